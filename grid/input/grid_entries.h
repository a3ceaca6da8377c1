// Texts that one gesture of the user enters into many cells: a paste, a fill, a clearing.
#pragma once

#include <optional>
#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

class GridCore;

// A text and the cell that it is for.
struct GridEntry {
    CCellID cell;
    CString text;
};

// ---- What is to be entered. The focus cell counts as selected when nothing is.

// Tab-separated text, from the first selected cell to the right and down, row by row. Where the size of the
// one selected range is a multiple of the text's, the text is repeated until the range is full. Places
// outside the grid and cells that do not take their text are among them.
std::vector<GridEntry> PasteEntries(const GridCore& core, const CString& text);
// The texts of a block for the block of the same size at `start`. Unless they are copied, the cells of the
// block that are not written to are cleared, apart from those whose text finds no place.
std::vector<GridEntry> MoveEntries(const GridCore& core, const CCellRange& block, CCellID start, bool isCopy);
// The following leave out cells that the user could not give the text, and those that show it already.
// One text for each selected cell.
std::vector<GridEntry> FillEntries(const GridCore& core, const CString& text);
// The texts of the first row of each selected range for the rows below it. A range of one row takes those of
// the row above it.
std::vector<GridEntry> FillDownEntries(const GridCore& core);

// What entering these would leave out. Empty texts are no loss, nor is one that the cell shows already.
PasteLoss LossOf(const GridCore& core, const std::vector<GridEntry>& entries);

// Gives out entries one by one. Cells that do not take their text are passed over; the grid gets no rows or
// columns. Between two entries others may change the grid: the rest follows the focus cell, which must be
// `anchor` in the beginning, and ends when the focus is lost or moved.
class GridEntries {
public:
    GridEntries(const GridCore& core, CCellID anchor, std::vector<GridEntry> entries);

    // The next entry, at the place where its cell is by now; none when no further one can be entered.
    std::optional<GridEntry> Next();

private:
    bool FollowFocus();

    const GridCore& m_core;
    std::vector<GridEntry> m_entries;
    std::size_t m_next = 0;
    CCellID m_anchor;  // in the coordinates of the entries
    // The grid when the last entry was given out.
    CCellID m_focus;
    int m_rowCount;
    int m_columnCount;
};

}  // namespace quorvane
