#include "grid/layout/grid_merges.h"

#include <algorithm>
#include <iterator>

#include "grid/layout/line_shift.h"

namespace quorvane {
namespace {

bool Overlap(const CCellRange& a, const CCellRange& b) {
    return a.minRow <= b.maxRow && b.minRow <= a.maxRow && a.minCol <= b.maxCol && b.minCol <= a.maxCol;
}

}  // namespace

void GridMerges::Clear() {
    m_blocks.clear();
    m_lastRow = -1;
    m_mostExtraRows = 0;
}

void GridMerges::Merge(const CCellRange& range) {
    std::erase_if(m_blocks, [&](const auto& entry) { return Overlap(entry.second, range); });
    Put(range);
}

void GridMerges::Put(const CCellRange& range) {
    if (range.RowCount() < 1 || range.ColumnCount() < 1 ||
        (range.RowCount() == 1 && range.ColumnCount() == 1)) {
        return;
    }
    m_blocks[{range.minRow, range.minCol}] = range;
    m_lastRow = std::max(m_lastRow, range.maxRow);
    m_mostExtraRows = std::max(m_mostExtraRows, range.maxRow - range.minRow);
}

CCellRange GridMerges::Extent(CCellID cell) const {
    // Only one block of each row can hold the cell: the last one that starts at or left of it.
    int row = cell.row;
    while (!m_blocks.empty() && row >= cell.row - m_mostExtraRows) {
        auto next = m_blocks.upper_bound({row, cell.col});
        if (next == m_blocks.begin()) {
            break;
        }
        const auto& [corner, block] = *std::prev(next);
        if (block.Contains(cell)) {
            return block;
        }
        row = corner.first == row ? row - 1 : corner.first;
    }
    return {cell.row, cell.col, cell.row, cell.col};
}

CCellRange GridMerges::GrownToBlocks(CCellRange range) const {
    bool grown = !m_blocks.empty();
    while (grown) {
        grown = false;
        for (const auto& [corner, block] : m_blocks) {
            if (corner.first > range.maxRow) {
                break;
            }
            const CCellRange both{std::min(range.minRow, block.minRow), std::min(range.minCol, block.minCol),
                                  std::max(range.maxRow, block.maxRow), std::max(range.maxCol, block.maxCol)};
            if (Overlap(range, block) && both != range) {
                range = both;
                grown = true;
            }
        }
    }
    return range;
}

template <typename Change>
void GridMerges::ChangeAll(Change change) {
    const std::map<Corner, CCellRange> old = std::exchange(m_blocks, {});
    Clear();
    for (const auto& [corner, block] : old) {
        CCellRange changed = block;
        change(changed);
        Put(changed);
    }
}

bool GridMerges::Reaches(Qt::Orientation lines, int at) const {
    return lines == Qt::Vertical ? at <= m_lastRow : !m_blocks.empty();
}

void GridMerges::InsertLines(Qt::Orientation lines, int at, int count) {
    if (Reaches(lines, at)) {
        ChangeAll([=](CCellRange& block) { ShiftForInsert(block, lines, at, count); });
    }
}

void GridMerges::RemoveLines(Qt::Orientation lines, int at, int count) {
    if (Reaches(lines, at)) {
        ChangeAll([=](CCellRange& block) { ShiftForRemove(block, lines, at, count); });
    }
}

}  // namespace quorvane
