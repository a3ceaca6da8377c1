#include "grid/cells/grid_cells.h"

#include <algorithm>
#include <utility>

namespace quorvane {

void GridCells::InsertRows(int at, int count) {
    m_rows.Insert(at, count);
}

void GridCells::RemoveRows(int at, int count) {
    m_rows.Remove(at, count);
}

void GridCells::InsertColumns(int at, int count, unsigned format) {
    const int oldCount = ColumnCount();
    const auto newCount = static_cast<std::size_t>(oldCount) + static_cast<std::size_t>(count);
    for (int i = 0; i < m_rows.Count(); ++i) {
        Row& row = m_rows[i];
        if (row == nullptr) {
            continue;
        }
        Row wider = std::make_unique<Slot[]>(newCount);
        std::move(row.get(), row.get() + at, wider.get());
        std::move(row.get() + at, row.get() + oldCount, wider.get() + at + count);
        for (Slot* added = wider.get() + at; added != wider.get() + at + count; ++added) {
            std::get<CGridCell>(*added).SetFormat(format);
        }
        row = std::move(wider);
    }
    m_columnFormats.insert(m_columnFormats.begin() + at, static_cast<std::size_t>(count), format);
}

void GridCells::RemoveColumns(int at, int count) {
    const int oldCount = ColumnCount();
    const auto newCount = static_cast<std::size_t>(oldCount) - static_cast<std::size_t>(count);
    for (int i = 0; i < m_rows.Count(); ++i) {
        Row& row = m_rows[i];
        if (row == nullptr) {
            continue;
        }
        Row narrower = std::make_unique<Slot[]>(newCount);
        std::move(row.get(), row.get() + at, narrower.get());
        std::move(row.get() + at + count, row.get() + oldCount, narrower.get() + at);
        row = std::move(narrower);
    }
    m_columnFormats.erase(m_columnFormats.begin() + at, m_columnFormats.begin() + at + count);
}

void GridCells::Unmake(int first, int last) {
    for (int row = first; row <= last; ++row) {
        m_rows[row] = nullptr;
    }
}

bool GridCells::Holds(int row, int column) const {
    return row >= 0 && row < RowCount() && column >= 0 && column < ColumnCount();
}

GridCells::Slot* GridCells::MadeRow(int row) const {
    if (m_rows[row] == nullptr) {
        m_rows[row] = std::make_unique<Slot[]>(m_columnFormats.size());
        for (int column = 0; column < ColumnCount(); ++column) {
            std::get<CGridCell>(m_rows[row][static_cast<std::size_t>(column)])
                .SetFormat(m_columnFormats[static_cast<std::size_t>(column)]);
        }
        m_onMade(row);
    }
    return row < RowCount() ? m_rows[row].get() : nullptr;
}

CGridCellBase* GridCells::At(int row, int column) {
    return const_cast<CGridCellBase*>(std::as_const(*this).At(row, column));
}

const CGridCellBase* GridCells::At(int row, int column) const {
    if (!Holds(row, column)) {
        return nullptr;
    }
    const Slot* cells = MadeRow(row);
    if (cells == nullptr || column >= ColumnCount()) {
        return nullptr;
    }
    const CGridCell* plain = std::get_if<CGridCell>(&cells[column]);
    return plain != nullptr ? plain : std::get<std::unique_ptr<CGridCellBase>>(cells[column]).get();
}

void GridCells::Replace(int row, int column, std::unique_ptr<CGridCellBase> cell) {
    m_rows[row][static_cast<std::size_t>(column)] = std::move(cell);
}

}  // namespace quorvane
