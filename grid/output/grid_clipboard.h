// The cells of a grid as text for the clipboard, and text from the clipboard put into cells.
#pragma once

#include <optional>

#include "grid/output/tab_text.h"

namespace quorvane {

class GridCore;

// The selected cells, or the focus cell when none is selected, as tab-separated text. Rows and columns with
// nothing selected in them are left out; a merged block has its text at its first cell. Nothing without a
// selection and a focus.
std::optional<CString> CopiedText(const GridCore& core);

// What pasting this text would leave out. Empty texts are no loss, nor is one that the cell shows already.
PasteLoss LossOfPaste(const GridCore& core, const CString& text);

// Pastes tab-separated text cell by cell, to the right and down of the first selected cell, or of the focus
// cell when none is selected. Cells that the user could not give this text are passed over; the grid gets no
// rows or columns. The focus goes to Start() before the first cell. Between two cells others may change the
// grid: the rest goes on where the focus cell has gone, and pasting ends when the focus is lost or moved.
class GridPaste {
public:
    struct Target {
        CCellID cell;
        CString text;
    };

    GridPaste(const GridCore& core, const CString& text);

    // Also when there was no text or no focus cell from the beginning.
    bool IsDone() const { return m_row >= static_cast<int>(m_table.size()); }
    // Where the first text belongs.
    CCellID Start() const { return m_start; }
    // The next cell that takes its text; none when no further one does.
    std::optional<Target> Next();

private:
    bool FollowFocus();

    const GridCore& m_core;
    TextTable m_table;
    int m_row = 0;  // in m_table, of the next text
    int m_column = 0;
    // The grid when the last text was given out.
    CCellID m_start;
    int m_rowCount;
    int m_columnCount;
};

}  // namespace quorvane
