#include "grid/cells/grid_cells.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorvane {

void GridCells::InsertRows(int at, int count) {
    const auto oldCount = static_cast<std::ptrdiff_t>(m_rows.size());
    m_rows.resize(m_rows.size() + static_cast<std::size_t>(count));
    std::rotate(m_rows.begin() + at, m_rows.begin() + oldCount, m_rows.end());
    for (auto row = m_rows.begin() + at; row != m_rows.begin() + at + count; ++row) {
        row->resize(static_cast<std::size_t>(m_columns));
    }
}

void GridCells::RemoveRows(int at, int count) {
    m_rows.erase(m_rows.begin() + at, m_rows.begin() + at + count);
    if (m_rows.empty()) {
        m_rows.shrink_to_fit();
    }
}

void GridCells::InsertColumns(int at, int count) {
    for (Row& row : m_rows) {
        Row wider;
        wider.reserve(row.size() + static_cast<std::size_t>(count));
        std::move(row.begin(), row.begin() + at, std::back_inserter(wider));
        wider.resize(wider.size() + static_cast<std::size_t>(count));
        std::move(row.begin() + at, row.end(), std::back_inserter(wider));
        row = std::move(wider);
    }
    m_columns += count;
}

void GridCells::RemoveColumns(int at, int count) {
    for (Row& row : m_rows) {
        row.erase(row.begin() + at, row.begin() + at + count);
    }
    m_columns -= count;
}

CGridCellBase* GridCells::At(int row, int column) {
    return const_cast<CGridCellBase*>(std::as_const(*this).At(row, column));
}

const CGridCellBase* GridCells::At(int row, int column) const {
    if (row < 0 || row >= RowCount() || column < 0 || column >= m_columns) {
        return nullptr;
    }
    const Slot& slot = m_rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    const CGridCell* plain = std::get_if<CGridCell>(&slot);
    return plain != nullptr ? plain : std::get<std::unique_ptr<CGridCellBase>>(slot).get();
}

void GridCells::Replace(int row, int column, std::unique_ptr<CGridCellBase> cell) {
    m_rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = std::move(cell);
}

}  // namespace quorvane
