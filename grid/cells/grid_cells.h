// The cells of the grid: one array of cells a row, made when the row is first touched.
#pragma once

#include <functional>
#include <memory>
#include <variant>
#include <vector>

#include "grid/cells/gap_vector.h"
#include "grid/cells/grid_cell.h"

namespace quorvane {

// A row that nobody has touched yet costs one pointer. Plain cells lie in the row's array itself, so making a
// row is one allocation; cells of other classes are held by pointer. A cell's address is valid until the
// shape or the cell's class changes, or its row is made anew.
class GridCells {
public:
    // onMade is called with a row's number right after its cells were made.
    explicit GridCells(std::function<void(int row)> onMade) : m_onMade(std::move(onMade)) {}

    int RowCount() const { return m_rows.Count(); }
    int ColumnCount() const { return static_cast<int>(m_columnFormats.size()); }

    void InsertRows(int at, int count);
    void RemoveRows(int at, int count);
    // Every cell of the new columns has this format, also in rows that are made later.
    void InsertColumns(int at, int count, unsigned format);
    void RemoveColumns(int at, int count);

    // Destroys the cells of rows first..last; they are made again when they are touched.
    void Unmake(int first, int last);

    // Null outside the table. Makes the row's cells.
    CGridCellBase* At(int row, int column);
    const CGridCellBase* At(int row, int column) const;
    // The cell must exist and have been made.
    void Replace(int row, int column, std::unique_ptr<CGridCellBase> cell);

private:
    using Slot = std::variant<CGridCell, std::unique_ptr<CGridCellBase>>;
    using Row = std::unique_ptr<Slot[]>;  // null until it is made; ColumnCount() slots

    bool Holds(int row, int column) const;
    // The cells of a row that exists, made if need be; null when onMade has taken them away again.
    Slot* MadeRow(int row) const;

    std::function<void(int row)> m_onMade;
    mutable GapVector<Row> m_rows;  // const access makes rows
    std::vector<unsigned> m_columnFormats;
};

}  // namespace quorvane
