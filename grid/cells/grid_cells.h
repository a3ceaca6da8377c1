// The cells of the grid: one array of cells a row.
#pragma once

#include <memory>
#include <variant>
#include <vector>

#include "grid/cells/grid_cell.h"

namespace quorvane {

// Plain cells lie in the row's array itself, which makes filling a table one allocation a row; cells of other
// classes are held by pointer. Cell addresses are valid until the shape or the cell's class changes.
class GridCells {
public:
    int RowCount() const { return static_cast<int>(m_rows.size()); }
    int ColumnCount() const { return m_columns; }

    void InsertRows(int at, int count);
    void RemoveRows(int at, int count);
    void InsertColumns(int at, int count);
    void RemoveColumns(int at, int count);

    // Null outside the table.
    CGridCellBase* At(int row, int column);
    const CGridCellBase* At(int row, int column) const;
    // The place must exist.
    void Replace(int row, int column, std::unique_ptr<CGridCellBase> cell);

private:
    using Slot = std::variant<CGridCell, std::unique_ptr<CGridCellBase>>;
    using Row = std::vector<Slot>;

    std::vector<Row> m_rows;
    int m_columns = 0;
};

}  // namespace quorvane
