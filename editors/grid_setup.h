// What every grid of the editors has in common, on a page or in a dialog: columns by shares, the looks of a
// row, numbers read from cells, and the questions about rows.
#pragma once

#include <QColor>
#include <span>

#include "grid/grid_ctrl.h"

namespace quorvane {

// Cell text alignments, each vertically centred on a single line.
inline constexpr unsigned kCentred = CellFormat::Centre | CellFormat::VCentre | CellFormat::SingleLine;
inline constexpr unsigned kLeft = CellFormat::Left | CellFormat::VCentre | CellFormat::SingleLine;

// Background of cells that are not edited: row numbers, the append row's marker, derived columns.
inline const QColor kReadOnlyColour{255, 255, 128};
// Background of the row number of a record that the last submit could not write.
inline const QColor kUnwrittenColour{255, 150, 120};

struct GridColumn {
    const char16_t* heading;
    double share;  // of the grid's usable width: that which SharesOf says, less a vertical scroll bar and 3
                   // pixels
};

enum class SharesOf {
    WindowWidth,  // the frame included
    ClientWidth,
};

// Makes a grid on that rectangle of parent, with one heading row and the given columns. Null when it cannot
// be made.
CGridCtrl* CreateGrid(QWidget* parent, int gridId, const QRect& rect, std::span<const GridColumn> columns,
                      SharesOf width = SharesOf::WindowWidth);

void WriteCell(CGridCtrl& grid, int row, int column, const CString& text, unsigned format);
// Column 0: a row number or the append row's marker, and the record's ID as the row's item data.
void WriteRowHead(CGridCtrl& grid, int row, const CString& text, int recordId, bool unwritten = false);

// The number typed into a cell; a text that is none, or is empty, counts as 0 and is rewritten to "0". A text
// that shows `present`, the value so far, is that value to the last digit, also in a form that may not be
// typed. An integer is rewritten as it is understood: "+3", or one beyond the range.
double ReadReal(CGridCtrl& grid, int row, int column, double present);
int ReadInteger(CGridCtrl& grid, int row, int column);

// Whether the row's record, which title names, is to go. The caption is that of the page or dialog that asks.
bool AskToDelete(QWidget* parent, const CString& caption, int row, const CString& title);
void TellIncompleteLoad(QWidget* parent, const CString& caption);

// A line that tells how many records or values a submit could not write.
CString UnwrittenText(int count);

}  // namespace quorvane
