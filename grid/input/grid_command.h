// What a key or a mouse event asks a grid to do. Keys and mouse only say it; GridController does it.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

struct GridCommand {
    enum class Kind {
        PassOn,         // the event means nothing here
        Nothing,        // the event is used up
        Focus,          // cell
        Extend,         // the selection to cell, with the focus
        Drag,           // the selection to cell, without the focus
        Add,            // cell to the selection, or from it
        SelectLines,    // lines, modifiers
        SelectRows,     // those of the selected cells
        SelectColumns,  // likewise
        SelectAll,
        ClearSelection,
        Edit,           // cell, with its whole text selected; or drop down its list
        EditAtEnd,      // cell, with the caret after the text
        Type,           // the event into an empty editor
        PressButton,    // number in cell
        Click,          // cell
        ClearContents,  // of the selected cells
        Cut,
        Copy,
        Paste,
        FillDown,
        Menu,             // of the focus cell
        ColumnWidth,      // of cell's column: number pixels
        ColumnsArranged,  // a column has been given its width
        Freeze,           // the columns up to cell's, or none when some are frozen
        DragBlock,        // show where the dragged block would go
        MoveBlock,        // lines to cell; with Ctrl copy it
        Redraw,           // cell
    };

    Kind kind = Kind::PassOn;
    CCellID cell = {};
    int number = 0;
    CCellRange lines = {};
    Qt::KeyboardModifiers modifiers = {};
};

}  // namespace quorvane
