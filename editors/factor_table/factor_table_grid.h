// The grid in which the factors of a utilization factor table are typed.
//
// Rows 0 to 2 hold the reflectances of ceiling, walls and floor of each column, row 3 the row label alone,
// and column 0 the row values. Factors stand from row 4 and column 1 on.
#pragma once

#include <vector>

#include "data/utilization_factor_table.h"
#include "grid/grid_ctrl.h"

namespace quorvane {

class FactorTableGrid : public CGridCtrl {
    Q_OBJECT

public:
    static constexpr int FirstRow = 4;
    static constexpr int FirstColumn = 1;

    // rowLabel is what a row value is called.
    explicit FactorTableGrid(const CString& rowLabel);

    // Builds the whole grid anew. The scroll position stays, and the focus stays on its factor, or near it
    // when that has gone.
    void Show(UtilizationFactorTable& table);

    // Whether the text in a cell is the one that was shown for the factor, so that nothing new was typed. A
    // cell shows two decimals until something is typed there.
    bool IsUntouched(int row, int column, double factor) const;
    // Notes that the text in a cell is no longer the factor with two decimals.
    void SetTyped(int row, int column);

private:
    CCellID Moved(CCellID cell, const UtilizationFactorTable& table) const;
    void Build(UtilizationFactorTable& table);
    void BuildLabels();
    void BuildHeadings();
    void MergeHeadings();

    CString m_rowLabel;
    std::vector<tagColHeading> m_headings;  // as shown
    std::vector<double> m_rowValues;
};

}  // namespace quorvane
