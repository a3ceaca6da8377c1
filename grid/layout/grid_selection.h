// Which cells are selected and which one has the focus; coordinates only, no painting and no events.
#pragma once

#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

// The selection is a list of ranges, which may overlap. The anchor is the corner that stays while the last
// range is extended.
class GridSelection {
public:
    CCellID Focus() const { return m_focus; }
    CCellID Anchor() const { return m_anchor; }
    const std::vector<CCellRange>& Ranges() const { return m_ranges; }
    bool IsSelected(CCellID cell) const;
    // Whether all cells of range are selected.
    bool Covers(const CCellRange& range) const;
    // The rows in which a cell is selected, as runs from top to bottom that do not touch.
    std::vector<GridRowRun> Rows() const;
    // The smallest range that holds all selected cells; (rows, columns, -1, -1) when none is.
    CCellRange Bounds(int rows, int columns) const;

    // Moves the focus and leaves the selected cells alone.
    void SetFocus(CCellID focus) { m_focus = focus; }
    // Without an anchor the next range is not an extension of the last one.
    void SetAnchor(CCellID anchor) { m_anchor = anchor; }
    void Clear();
    // Selects range alone, adds it, or replaces the range selected last by it.
    void SelectOnly(const CCellRange& range, CCellID anchor);
    void Add(const CCellRange& range, CCellID anchor);
    void ReplaceLast(const CCellRange& range);
    // Takes the cells of range away from the selection.
    void Remove(const CCellRange& range);

    // allowed: the cells that are not fixed. All others lose focus and selection.
    void LeaveFixed(const CCellRange& allowed);

    // Focus and selection move with their cells; removed cells lose them.
    void InsertLines(Qt::Orientation lines, int at, int count);
    void RemoveLines(Qt::Orientation lines, int at, int count);

private:
    void DropEmptyRanges();

    CCellID m_focus;
    CCellID m_anchor;
    std::vector<CCellRange> m_ranges;
};

}  // namespace quorvane
