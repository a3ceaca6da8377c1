#include "grid/layout/grid_selection.h"

#include <algorithm>
#include <utility>

#include "grid/layout/line_shift.h"

namespace quorvane {

bool GridSelection::IsSelected(CCellID cell) const {
    return std::any_of(m_ranges.begin(), m_ranges.end(),
                       [&](const CCellRange& range) { return range.Contains(cell); });
}

bool GridSelection::Covers(const CCellRange& range) const {
    GridSelection rest;
    rest.Add(range, {});
    for (const CCellRange& selected : m_ranges) {
        rest.Remove(selected);
    }
    return rest.m_ranges.empty();
}

CCellRange GridSelection::Bounds(int rows, int columns) const {
    CCellRange bounds{rows, columns, -1, -1};
    for (const CCellRange& range : m_ranges) {
        bounds = {std::min(bounds.minRow, range.minRow), std::min(bounds.minCol, range.minCol),
                  std::max(bounds.maxRow, range.maxRow), std::max(bounds.maxCol, range.maxCol)};
    }
    return bounds;
}

void GridSelection::Clear() {
    m_ranges.clear();
    m_anchor = {};
}

void GridSelection::SelectOnly(const CCellRange& range, CCellID anchor) {
    m_ranges = {range};
    m_anchor = anchor;
}

void GridSelection::Add(const CCellRange& range, CCellID anchor) {
    // A range inside the new one adds nothing; dropping it keeps the list short however often the user
    // clicks.
    std::erase_if(m_ranges, [&](const CCellRange& old) {
        return range.Contains({old.minRow, old.minCol}) && range.Contains({old.maxRow, old.maxCol});
    });
    m_ranges.push_back(range);
    m_anchor = anchor;
}

void GridSelection::ReplaceLast(const CCellRange& range) {
    if (!m_ranges.empty()) {
        m_ranges.pop_back();
    }
    m_ranges.push_back(range);
}

void GridSelection::Remove(const CCellRange& range) {
    std::vector<CCellRange> left;
    for (const CCellRange& old : m_ranges) {
        const int top = std::max(old.minRow, range.minRow);
        const int bottom = std::min(old.maxRow, range.maxRow);
        if (top > bottom || range.minCol > old.maxCol || range.maxCol < old.minCol) {
            left.push_back(old);
            continue;
        }
        left.insert(left.end(), {{old.minRow, old.minCol, top - 1, old.maxCol},
                                 {top, old.minCol, bottom, range.minCol - 1},
                                 {top, range.maxCol + 1, bottom, old.maxCol},
                                 {bottom + 1, old.minCol, old.maxRow, old.maxCol}});
    }
    m_ranges = std::move(left);
    DropEmptyRanges();
}

std::vector<GridRowRun> GridSelection::Rows() const {
    std::vector<CCellRange> ranges = m_ranges;
    std::ranges::sort(ranges, {}, &CCellRange::minRow);
    std::vector<GridRowRun> runs;
    for (const CCellRange& range : ranges) {
        if (!runs.empty() && range.minRow <= runs.back().last + 1) {
            runs.back().last = std::max(runs.back().last, range.maxRow);
        } else {
            runs.push_back({range.minRow, range.maxRow});
        }
    }
    return runs;
}

void GridSelection::LeaveFixed(const CCellRange& allowed) {
    if (!allowed.Contains(m_focus)) {
        m_focus = {};
    }
    if (!allowed.Contains(m_anchor)) {
        m_anchor = {};
    }
    for (CCellRange& range : m_ranges) {
        range.minRow = std::max(range.minRow, allowed.minRow);
        range.minCol = std::max(range.minCol, allowed.minCol);
    }
    DropEmptyRanges();
}

void GridSelection::DropEmptyRanges() {
    std::erase_if(m_ranges,
                  [](const CCellRange& range) { return range.RowCount() < 1 || range.ColumnCount() < 1; });
}

void GridSelection::InsertLines(Qt::Orientation lines, int at, int count) {
    ShiftForInsert(m_focus, lines, at, count);
    ShiftForInsert(m_anchor, lines, at, count);
    for (CCellRange& range : m_ranges) {
        ShiftForInsert(range, lines, at, count);
    }
}

void GridSelection::RemoveLines(Qt::Orientation lines, int at, int count) {
    ShiftForRemove(m_focus, lines, at, count);
    ShiftForRemove(m_anchor, lines, at, count);
    for (CCellRange& range : m_ranges) {
        ShiftForRemove(range, lines, at, count);
    }
    DropEmptyRanges();
}

}  // namespace quorvane
