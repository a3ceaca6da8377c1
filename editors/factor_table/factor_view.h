// FactorView: the commands by which the factors of a table are looked at: their decimals, and their plot.
#pragma once

#include <QPointer>
#include <functional>

#include "data/utilization_factor_table.h"

namespace quorvane {

class FactorPlot;
class FactorTableGrid;

class FactorView {
public:
    // Adds the commands to the grid's context menu. showAnew shows the whole table; rowLabel is the name of
    // the row values. All arguments outlive the object.
    void AddCommands(FactorTableGrid& grid, const UtilizationFactorTable& table, const CString& rowLabel,
                     const std::function<void()>& showAnew);
    // Follows a change of the table.
    void Update();

private:
    void OpenPlot(FactorTableGrid& grid, const UtilizationFactorTable& table, const CString& rowLabel);

    QPointer<FactorPlot> m_plot;
};

}  // namespace quorvane
