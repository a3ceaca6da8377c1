#include "grid/input/grid_keys.h"

#include <algorithm>
#include <utility>

#include "grid/grid_core.h"

namespace quorvane {
namespace {

using Kind = GridCommand::Kind;

bool HasCommandModifier(const QKeyEvent& event) {
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
}

bool IsTyping(const QKeyEvent& event) {
    const Qt::KeyboardModifiers command =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    // Ctrl and Alt together are how some keyboards reach their third characters.
    const bool isCommand = command != Qt::NoModifier && command != (Qt::ControlModifier | Qt::AltModifier);
    const CString text = event.text();
    return !isCommand && !text.isEmpty() && (text.at(0).isPrint() || text.at(0).isSurrogate());
}

// The next line in a direction that is neither fixed nor hidden, or -1.
int NextLine(const GridAxis& axis, int line, int direction) {
    for (line += direction; line >= axis.FixedCount() && line < axis.Count(); line += direction) {
        if (axis.Size(line) > 0) {
            return line;
        }
    }
    return -1;
}

CCellID OriginOrNone(const GridCore& core, CCellID cell) {
    return cell.IsValid() ? core.Origin(cell) : CCellID{};
}

CCellID FirstCell(const GridCore& core) {
    const GridLayout& layout = core.Layout();
    return OriginOrNone(core, {NextLine(layout.rows, layout.rows.FixedCount() - 1, 1),
                               NextLine(layout.columns, layout.columns.FixedCount() - 1, 1)});
}

CCellID LastCell(const GridCore& core) {
    const GridLayout& layout = core.Layout();
    return OriginOrNone(core, {NextLine(layout.rows, layout.rows.Count(), -1),
                               NextLine(layout.columns, layout.columns.Count(), -1)});
}

CCellID NextEditable(const GridCore& core, CCellID from, int direction) {
    const GridLayout& layout = core.Layout();
    int row = from.row;
    int column = from.col;
    while (row >= 0) {
        column = NextLine(layout.columns, column, direction);
        if (column < 0) {
            row = NextLine(layout.rows, row, direction);
            column = direction > 0 ? layout.columns.FixedCount() - 1 : layout.columns.Count();
            continue;
        }
        const CCellID cell{row, column};
        const CGridCellBase* source = core.Cell(cell);
        constexpr unsigned kTakes = CellState::DropDown | CellState::TakesTexts;
        const bool takes = source != nullptr && (source->GetState() & kTakes) != 0;
        if (core.Origin(cell) == cell && (takes || core.EditingOf(cell) != CellEditing::None)) {
            return cell;
        }
    }
    return {};
}

CCellID PageTarget(const GridCore& core, CCellID focus, int direction) {
    const GridAxis& rows = core.Layout().rows;
    const qint64 page = std::max(1, rows.ViewLength() - rows.StayingLength() - rows.DefaultSize());
    const qint64 position = rows.Start(focus.row) + direction * page;
    const int row =
        rows.LineAt(std::clamp<qint64>(position, rows.FixedLength(), rows.Start(rows.Count()) - 1));
    return row < 0 ? CCellID{} : core.Origin({row, focus.col});
}

// The cell that a key moves to, which is the focus cell at an edge; none when the key moves nothing.
CCellID KeyTarget(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    const bool far = (event.modifiers() & Qt::ControlModifier) != 0;
    if (!focus.IsValid() || (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return {};
    }
    const auto step = [&](GridMove move) {
        const CCellID next = Step(core, focus, move);
        return next.IsValid() ? next : focus;
    };
    switch (event.key()) {
        case Qt::Key_Up:
            return far ? core.Origin({FirstCell(core).row, focus.col}) : step(GridMove::Up);
        case Qt::Key_Down:
            return far ? core.Origin({LastCell(core).row, focus.col}) : step(GridMove::Down);
        case Qt::Key_Left:
            return far ? core.Origin({focus.row, FirstCell(core).col}) : step(GridMove::Left);
        case Qt::Key_Right:
            return far ? core.Origin({focus.row, LastCell(core).col}) : step(GridMove::Right);
        case Qt::Key_Home:
            return far ? FirstCell(core) : core.Origin({focus.row, FirstCell(core).col});
        case Qt::Key_End:
            return far ? LastCell(core) : core.Origin({focus.row, LastCell(core).col});
        case Qt::Key_PageUp:
            return far ? CCellID{} : PageTarget(core, focus, -1);
        case Qt::Key_PageDown:
            return far ? CCellID{} : PageTarget(core, focus, 1);
        default:
            return {};
    }
}

GridCommand MoveByKey(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    const CCellID target = KeyTarget(core, event, focus);
    if (!target.IsValid()) {
        return {};
    }
    return {(event.modifiers() & Qt::ShiftModifier) != 0 ? Kind::Extend : Kind::Focus, target};
}

GridCommand PressTab(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    if (HasCommandModifier(event)) {
        return {};
    }
    const bool back = event.key() == Qt::Key_Backtab || (event.modifiers() & Qt::ShiftModifier) != 0;
    const CCellID beside = Step(core, focus, back ? GridMove::Left : GridMove::Right);
    if (beside.IsValid()) {
        return {Kind::Focus, beside};
    }
    const CCellID other = Step(core, focus, back ? GridMove::PreviousEditable : GridMove::NextEditable);
    return {other.IsValid() ? Kind::Focus : Kind::PassOn, other};  // at the end the key leaves the grid
}

// Enter is used up even at the end: in a table it must not press a dialog's default button.
GridCommand PressEnter(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    if (HasCommandModifier(event)) {
        return {};
    }
    const bool up = (event.modifiers() & Qt::ShiftModifier) != 0;
    const CCellID target = StepByEnter(core, focus, up ? GridMove::Up : GridMove::Down);
    return {target.IsValid() ? Kind::Focus : Kind::Nothing, target};
}

GridCommand TypeInto(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    const bool types = IsTyping(event) && core.EditingOf(focus) == CellEditing::Text;
    return {types ? Kind::Type : Kind::PassOn, focus};
}

GridCommand OpenChoices(const GridCore& core, CCellID focus) {
    return {core.EditingOf(focus) == CellEditing::Choice ? Kind::Edit : Kind::PassOn, focus};
}

GridCommand PressF2(const GridCore& core, CCellID focus) {
    return {core.EditingOf(focus) == CellEditing::None ? Kind::PassOn : Kind::EditAtEnd, focus};
}

GridCommand PressSpace(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    switch (core.EditingOf(focus)) {
        case CellEditing::Text:
            return TypeInto(core, event, focus);
        case CellEditing::Choice:
            return {HasCommandModifier(event) ? Kind::PassOn : Kind::Edit, focus};
        default:
            return {HasCommandModifier(event) ? Kind::PassOn : Kind::PressButton, focus};
    }
}

GridCommand PressWithFocus(const GridCore& core, const QKeyEvent& event, CCellID focus) {
    switch (event.key()) {
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return PressTab(core, event, focus);
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return PressEnter(core, event, focus);
        case Qt::Key_F2:
            return PressF2(core, focus);
        case Qt::Key_F4:
            return OpenChoices(core, focus);
        case Qt::Key_Space:
            return PressSpace(core, event, focus);
        case Qt::Key_Delete:
            return {HasCommandModifier(event) ? Kind::PassOn : Kind::ClearContents, focus};
        case Qt::Key_Backspace: {
            const bool empties = !HasCommandModifier(event) && core.EditingOf(focus) == CellEditing::Text;
            return {empties ? Kind::Edit : Kind::PassOn, focus};  // all is selected, and the key goes there
        }
        case Qt::Key_Down:
            return (event.modifiers() & Qt::AltModifier) != 0 ? OpenChoices(core, focus)
                                                              : MoveByKey(core, event, focus);
        default:
            break;
    }
    const GridCommand move = MoveByKey(core, event, focus);
    return move.kind != Kind::PassOn ? move : TypeInto(core, event, focus);
}

// The commands that do not depend on the focus cell.
Kind CommandOfCombination(const QKeyEvent& event) {
    constexpr std::pair<QKeySequence::StandardKey, Kind> kStandard[]{
        {QKeySequence::SelectAll, Kind::SelectAll},
        {QKeySequence::Cut, Kind::Cut},
        {QKeySequence::Copy, Kind::Copy},
        {QKeySequence::Paste, Kind::Paste}};
    for (const auto& [key, command] : kStandard) {
        if (event.matches(key)) {
            return command;
        }
    }
    constexpr std::pair<QKeyCombination, Kind> kOwn[]{{Qt::CTRL | Qt::Key_D, Kind::FillDown},
                                                      {Qt::SHIFT | Qt::Key_Space, Kind::SelectRows},
                                                      {Qt::CTRL | Qt::Key_Space, Kind::SelectColumns},
                                                      {Qt::SHIFT | Qt::Key_F10, Kind::Menu},
                                                      {Qt::Key_Menu, Kind::Menu}};
    for (const auto& [key, command] : kOwn) {
        if (event.keyCombination() == key) {
            return command;
        }
    }
    return Kind::PassOn;
}

}  // namespace

GridCommand CommandOfKey(const GridCore& core, const QKeyEvent& event) {
    if (const Kind command = CommandOfCombination(event); command != Kind::PassOn) {
        return {command, core.Focus()};
    }
    if (core.Focus().IsValid()) {
        return PressWithFocus(core, event, core.Focus());
    }
    // The first key of movement gives the focus to a cell.
    const CCellID first = FirstVisible(core);
    if (!KeyTarget(core, event, first).IsValid()) {
        return {};
    }
    return {HasCommandModifier(event) ? Kind::Nothing : Kind::Focus, first};
}

CCellID Step(const GridCore& core, CCellID from, GridMove move) {
    const GridLayout& layout = core.Layout();
    if (!layout.Holds(from)) {
        return {};
    }
    const CCellRange block = core.Extent(from);
    switch (move) {
        case GridMove::Up:
            return OriginOrNone(core, {NextLine(layout.rows, block.minRow, -1), from.col});
        case GridMove::Down:
            return OriginOrNone(core, {NextLine(layout.rows, block.maxRow, 1), from.col});
        case GridMove::Left:
            return OriginOrNone(core, {from.row, NextLine(layout.columns, block.minCol, -1)});
        case GridMove::Right:
            return OriginOrNone(core, {from.row, NextLine(layout.columns, block.maxCol, 1)});
        case GridMove::NextEditable:
            return NextEditable(core, from, 1);
        default:
            return NextEditable(core, from, -1);
    }
}

CCellID StepByEnter(const GridCore& core, CCellID from, GridMove move) {
    const CCellID step = Step(core, from, move);
    if (step.IsValid() || !core.typesByColumns) {
        return step;
    }
    if (move == GridMove::Down && from.col + 1 < core.ColumnCount()) {
        return {core.Layout().rows.FixedCount(), from.col + 1};
    }
    if (move == GridMove::Up && from.col > core.Layout().columns.FixedCount()) {
        return {core.RowCount() - 1, from.col - 1};
    }
    return {};
}

CCellID FirstVisible(const GridCore& core) {
    const CCellID cell = core.CellAt(core.Layout().BodyArea().topLeft());
    return core.IsSelectable(cell) ? cell : FirstCell(core);
}

}  // namespace quorvane
