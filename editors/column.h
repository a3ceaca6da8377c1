// Column<Record>: everything that an editor knows of one column of its grid, in one place.
#pragma once

#include <algorithm>
#include <functional>

#include "data/number_text.h"
#include "editors/grid_setup.h"
#include "model/text_checks.h"

namespace quorvane {

template <typename Record>
struct Column {
    const char16_t* heading;
    const char16_t* help = u"";  // the tip of the heading: meaning and unit
    double share;                // of the grid's usable width
    unsigned format = kCentred;
    // The text that the record shows in this column.
    std::function<CString(const Record&)> show = {};
    // The number that it shows, for a column of numbers. Rows are sorted and filtered by it.
    std::function<double(const Record&)> number = {};
    // Takes what the user typed or chose into the record. Never writes a cell: a cell that then shows the
    // record differently is rewritten by the grid. None: the cell takes no text.
    std::function<void(const CString& text, Record&)> take = {};
    // Whether a text is one that `take` understands. A paste leaves others out, after a question. None: all.
    std::function<bool(const CString& text)> accepts = {};
    // How the cell is edited. None: it is typed into.
    std::function<CellSetup(const Record&)> setup = {};
    // What the button or the chooser of a cell opens. None: nothing.
    std::function<void(CCellID cell)> open = {};
    // What the tip of a cell tells besides its text. None: nothing.
    std::function<GridTip(const Record&)> tip = {};
    // Whether this cell must be shown again after another cell of the row has been edited.
    bool dependsOnRecord = false;
    // Whether the rows can be sorted, filtered and searched by what the column shows.
    bool holdsText = true;
};

// Whether a text may be entered into the record's cell in this column, apart from typing.
template <typename Record>
bool TakesText(const Column<Record>& column, const Record& record, const CString& text) {
    const CellSetup setup = column.setup ? column.setup(record) : CellSetup{};
    if (setup.kind == CellSetup::DropDown) {
        return column.take &&
               std::find(setup.choices->begin(), setup.choices->end(), text) != setup.choices->end();
    }
    const bool takes = setup.kind == CellSetup::Text || setup.takesTexts;
    return takes && column.take && (!column.accepts || column.accepts(text));
}

// The row numbers, which every grid has in column 0.
template <typename Record>
Column<Record> NumberColumn(double share) {
    return {.heading = u"序号", .help = u"行号。“追加”行用来新增一条记录。", .share = share};
}

template <typename Record>
Column<Record> TextColumn(const char16_t* heading, const char16_t* help, double share, CString Record::*field,
                          unsigned format = kCentred) {
    return {.heading = heading,
            .help = help,
            .share = share,
            .format = format,
            .show = [field](const Record& record) { return record.*field; },
            .take = [field](const CString& text, Record& record) { record.*field = text; }};
}

// A text that is no number is taken as 0.
template <typename Record>
Column<Record> RealColumn(const char16_t* heading, const char16_t* help, double share,
                          double Record::*field) {
    return {.heading = heading,
            .help = help,
            .share = share,
            .show = [field](const Record& record) { return FormatReal(record.*field); },
            .number = [field](const Record& record) { return record.*field; },
            .take = [field](const CString& text,
                            Record& record) { record.*field = TypedReal(text, record.*field); },
            .accepts = [](const CString& text) { return CheckReal(text).has_value(); }};
}

template <typename Record>
Column<Record> IntegerColumn(const char16_t* heading, const char16_t* help, double share,
                             int Record::*field) {
    return {.heading = heading,
            .help = help,
            .share = share,
            .show = [field](const Record& record) { return FormatInteger(record.*field); },
            .number = [field](const Record& record) { return record.*field; },
            .take = [field](const CString& text, Record& record) { record.*field = TypedInteger(text); },
            .accepts = [](const CString& text) { return CheckInteger(text).has_value(); }};
}

}  // namespace quorvane
