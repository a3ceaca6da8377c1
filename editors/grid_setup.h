// How every grid of the editors is set up, on a page or in a dialog: columns by shares of the width, and the
// kinds of cells.
#pragma once

#include <QColor>
#include <memory>
#include <span>
#include <vector>

#include "grid/grid_ctrl.h"

namespace quorvane {

// Cell text alignments, each vertically centred on a single line.
inline constexpr unsigned kCentred = CellFormat::Centre | CellFormat::VCentre | CellFormat::SingleLine;
inline constexpr unsigned kLeft = CellFormat::Left | CellFormat::VCentre | CellFormat::SingleLine;
inline constexpr unsigned kLeftEllipsis = kLeft | CellFormat::EndEllipsis;

// Background of cells that are not edited: row numbers, the append row's marker, derived columns.
inline const QColor kReadOnlyColour{255, 255, 128};
// Background of the row number of a record that the last submit could not write.
inline const QColor kUnwrittenColour{255, 150, 120};

// The width of the grid that column shares refer to. A vertical scroll bar and 3 pixels are taken off it.
enum class SharesOf {
    WindowWidth,  // the frame included
    ClientWidth,
};

// Creates a grid on that rectangle of parent, its owner, with one heading row and no columns.
CGridCtrl* CreateGrid(QWidget& parent, int gridId, const QRect& rect);
// The width that the columns of the grid share, in pixels.
int UsableWidth(const CGridCtrl& grid, SharesOf width);

using CellChoices = std::shared_ptr<const std::vector<CString>>;

// How the user edits a cell.
struct CellSetup {
    enum Kind {
        Text,      // typed into
        ReadOnly,  // not at all
        Chooser,   // in a list that the editor opens
        DropDown,  // in a drop-down list of `choices`
        Button,    // in a dialog that a push button with `caption` opens
    };
    Kind kind = Text;
    CellChoices choices = {};
    CString caption = {};
    bool takesTexts = false;  // a paste enters a text where none is typed
};

// Gives the cell the kind that the setup names, and shows the text in it. A drop-down list also shows a text
// that is not among its choices, and uses its own format.
void ShowCell(CGridCtrl& grid, CBtnDataBase& buttons, CCellID cell, const CellSetup& setup,
              const CString& text, unsigned format);
// Tells beside the editor of a cell that its text holds a single quote, which cannot be written.
void ShowQuoteTip(QWidget* editor, const CString& text);
// Column 0: the row number or the append row's marker, and the record's ID as item data.
void ShowRowHead(CGridCtrl& grid, int row, const CString& text, int recordId, bool isUnwritten);

}  // namespace quorvane
