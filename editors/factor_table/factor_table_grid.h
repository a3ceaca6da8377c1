// The grid in which the factors of a utilization factor table are typed.
//
// Rows 0 to 2 hold the reflectances of ceiling, walls and floor of each column, row 3 holds the row label,
// and column 0 holds the row values. The factors begin at row 4 and column 1.
#pragma once

#include <optional>
#include <vector>

#include "data/utilization_factor_table.h"
#include "grid/grid_ctrl.h"
#include "model/factor_table/factor_table_editing.h"

namespace quorvane {

class FactorTableGrid : public CGridCtrl {
    Q_OBJECT

public:
    static constexpr int kFirstRow = 4;
    static constexpr int kFirstColumn = 1;
    static constexpr int kFewestDecimals = 2;
    static constexpr int kMostDecimals = 4;

    // rowLabel is the name of the row values.
    explicit FactorTableGrid(const CString& rowLabel);

    // What the marks and tips of the cells tell; outlives the grid.
    void SetEditing(const FactorTableEditing& editing);
    // Rebuilds the whole grid. The scroll position stays. The focus stays on its factor, or moves to a
    // neighbour when the factor was removed.
    void Show(UtilizationFactorTable& table);
    // How many decimals the next Show gives the factors. The user finds them again in every later table.
    void SetDecimals(int decimals);
    int Decimals() const { return m_decimals; }
    // Selects the factors of a heading or a row value, counted from 0, and makes them visible.
    void ShowHeading(int index);
    void ShowRow(int index);

private:
    unsigned MarksOf(const FactorTableEditing& editing, CCellID cell) const;
    CString TipOf(const FactorTableEditing& editing, CCellID cell) const;
    std::optional<double> FactorAt(const FactorTableEditing& editing, CCellID cell) const;
    CCellID PlaceAfterChange(CCellID cell, const UtilizationFactorTable& table) const;
    void Build(UtilizationFactorTable& table);
    void BuildLabels(const UtilizationFactorTable& table);
    void BuildHeadings();
    void MergeHeadings();

    CString m_rowLabel;
    int m_decimals;
    std::vector<tagColHeading> m_headings;  // those shown
    std::vector<double> m_rowValues;
    std::vector<UnwrittenReason> m_unwritten;  // by row value
};

}  // namespace quorvane
