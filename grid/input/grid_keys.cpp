#include "grid/input/grid_keys.h"

#include <QApplication>
#include <QPointer>
#include <algorithm>

#include "grid/grid_ctrl.h"
#include "grid/input/in_place_edit.h"
#include "grid/output/grid_clipboard.h"

namespace quorvane {
namespace {

bool IsTyping(const QKeyEvent& event) {
    const Qt::KeyboardModifiers command =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    // Ctrl and Alt together are how some keyboards reach their third characters.
    const bool isCommand = command != Qt::NoModifier && command != (Qt::ControlModifier | Qt::AltModifier);
    const CString text = event.text();
    return !isCommand && !text.isEmpty() && (text.at(0).isPrint() || text.at(0).isSurrogate());
}

bool HasCommandModifier(const QKeyEvent& event) {
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
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

}  // namespace

CCellID GridKeys::FirstCell() const {
    const GridLayout& layout = m_grid.Layout();
    const CCellID cell{NextLine(layout.rows, layout.rows.FixedCount() - 1, 1),
                       NextLine(layout.columns, layout.columns.FixedCount() - 1, 1)};
    return cell.IsValid() ? m_grid.MergeOrigin(cell.row, cell.col) : CCellID{};
}

CCellID GridKeys::LastCell() const {
    const GridLayout& layout = m_grid.Layout();
    const CCellID cell{NextLine(layout.rows, layout.rows.Count(), -1),
                       NextLine(layout.columns, layout.columns.Count(), -1)};
    return cell.IsValid() ? m_grid.MergeOrigin(cell.row, cell.col) : CCellID{};
}

CCellID GridKeys::FirstVisible() const {
    const QRect area = m_grid.Layout().ScrollingArea();
    const CCellID cell = m_grid.Layout().CellAt(area.topLeft());
    return cell.IsValid() && !m_grid.Layout().IsFixed(cell) ? m_grid.MergeOrigin(cell.row, cell.col)
                                                            : FirstCell();
}

CCellID GridKeys::Step(CCellID from, Move move) const {
    if (!m_grid.Layout().Holds(from)) {
        return {};
    }
    if (move == Move::NextEditable || move == Move::PreviousEditable) {
        return NextEditable(from, move == Move::NextEditable ? 1 : -1);
    }
    const GridLayout& layout = m_grid.Layout();
    const CCellRange block = m_grid.MergeExtent(from.row, from.col);
    CCellID target = from;
    switch (move) {
        case Move::Up:
            target.row = NextLine(layout.rows, block.minRow, -1);
            break;
        case Move::Down:
            target.row = NextLine(layout.rows, block.maxRow, 1);
            break;
        case Move::Left:
            target.col = NextLine(layout.columns, block.minCol, -1);
            break;
        default:
            target.col = NextLine(layout.columns, block.maxCol, 1);
            break;
    }
    return target.IsValid() ? m_grid.MergeOrigin(target.row, target.col) : CCellID{};
}

CCellID GridKeys::NextEditable(CCellID from, int direction) const {
    const GridLayout& layout = m_grid.Layout();
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
        const bool isFilled = m_grid.EditingOf(cell) != CellEditing::None ||
                              (m_grid.GetItemState(row, column) & CellState::DropDown) != 0;
        if (m_grid.MergeOrigin(row, column) == cell && isFilled) {
            return cell;
        }
    }
    return {};
}

// Where a table that is typed column by column goes on after its foot (down) or its head (up).
CCellID GridKeys::NextColumn(CCellID from, Move move) const {
    if (!m_grid.TypesByColumns()) {
        return {};
    }
    if (move == Move::Down && from.col + 1 < m_grid.GetColumnCount()) {
        return {m_grid.GetFixedRowCount(), from.col + 1};
    }
    if (move == Move::Up && from.col > m_grid.GetFixedColumnCount()) {
        return {m_grid.GetRowCount() - 1, from.col - 1};
    }
    return {};
}

void GridKeys::GoOnEditing(CCellID edited, Move move) {
    // Whoever was told of the edit may have inserted or removed rows, which moves the focus with its cell; or
    // have refilled the grid, which clears it.
    const CCellID from = m_grid.GetFocusCell().IsValid() ? m_grid.GetFocusCell() : edited;
    if (!m_grid.Layout().Holds(from)) {
        return;
    }
    const CCellID step = Step(from, move);
    const CCellID target = step.IsValid() ? step : NextColumn(from, move);
    const QPointer<CGridCtrl> grid(&m_grid);
    m_grid.SetFocusCell(target.IsValid() ? target : from);
    if (!grid.isNull() && m_grid.GetFocusCell() == target && m_grid.EditingOf(target) == CellEditing::Text) {
        m_grid.BeginEdit(target.row, target.col);
    }
}

void GridKeys::ShowFocus() {
    m_grid.FocusWithoutSelecting(FirstVisible());
}

bool GridKeys::Press(const QKeyEvent& event) {
    if (event.matches(QKeySequence::SelectAll)) {
        m_grid.SelectAllCells();
        return true;
    }
    if (event.matches(QKeySequence::Copy)) {
        return CopySelection(m_grid);
    }
    if (event.matches(QKeySequence::Paste)) {
        return PasteAtFocus(m_grid);
    }
    const CCellID focus = m_grid.GetFocusCell();
    if (focus.IsValid()) {
        return PressWithFocus(event, focus);
    }
    const bool moves = KeyTarget(event, FirstVisible()).IsValid();
    if (moves && !HasCommandModifier(event)) {
        m_grid.SetFocusCell(FirstVisible());
    }
    return moves;
}

bool GridKeys::PressWithFocus(const QKeyEvent& event, CCellID focus) {
    switch (event.key()) {
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return PressTab(event, focus);
        case Qt::Key_Return:
        case Qt::Key_Enter: {
            if (HasCommandModifier(event)) {
                return false;
            }
            const bool up = (event.modifiers() & Qt::ShiftModifier) != 0;
            const CCellID target = Step(focus, up ? Move::Up : Move::Down);
            if (target.IsValid()) {
                m_grid.SetFocusCell(target);
            }
            return true;  // also at the end: Enter in a table must not press a dialog's default button
        }
        case Qt::Key_F2:
            return OpenChoices(focus) || m_grid.BeginEditAtEnd(focus.row, focus.col);
        case Qt::Key_F4:
            return OpenChoices(focus);
        case Qt::Key_Space:
            return PressSpace(event, focus);
        case Qt::Key_Delete:
            return ClearText(focus);
        case Qt::Key_Down:
            if ((event.modifiers() & Qt::AltModifier) != 0) {
                return OpenChoices(focus);
            }
            return MoveByKey(event, focus);
        default:
            return MoveByKey(event, focus) || TypeInto(event, focus);
    }
}

CCellID GridKeys::PageTarget(CCellID focus, int direction) const {
    const GridAxis& rows = m_grid.Layout().rows;
    const qint64 page = std::max(1, rows.ViewLength() - rows.FixedLength() - rows.DefaultSize());
    const qint64 position = rows.Start(focus.row) + direction * page;
    const int row =
        rows.LineAt(std::clamp<qint64>(position, rows.FixedLength(), rows.Start(rows.Count()) - 1));
    if (row < 0) {
        return {};
    }
    return m_grid.MergeOrigin(row, focus.col);
}

CCellID GridKeys::KeyTarget(const QKeyEvent& event, CCellID focus) const {
    const bool far = (event.modifiers() & Qt::ControlModifier) != 0;
    if (!focus.IsValid() || (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return {};
    }
    const auto step = [&](Move move) {
        const CCellID next = Step(focus, move);
        return next.IsValid() ? next : focus;
    };
    switch (event.key()) {
        case Qt::Key_Up:
            return far ? m_grid.MergeOrigin(FirstCell().row, focus.col) : step(Move::Up);
        case Qt::Key_Down:
            return far ? m_grid.MergeOrigin(LastCell().row, focus.col) : step(Move::Down);
        case Qt::Key_Left:
            return far ? m_grid.MergeOrigin(focus.row, FirstCell().col) : step(Move::Left);
        case Qt::Key_Right:
            return far ? m_grid.MergeOrigin(focus.row, LastCell().col) : step(Move::Right);
        case Qt::Key_Home:
            return far ? FirstCell() : m_grid.MergeOrigin(focus.row, FirstCell().col);
        case Qt::Key_End:
            return far ? LastCell() : m_grid.MergeOrigin(focus.row, LastCell().col);
        case Qt::Key_PageUp:
            return far ? CCellID{} : PageTarget(focus, -1);
        case Qt::Key_PageDown:
            return far ? CCellID{} : PageTarget(focus, 1);
        default:
            return {};
    }
}

bool GridKeys::MoveByKey(const QKeyEvent& event, CCellID focus) {
    const CCellID target = KeyTarget(event, focus);
    if (!target.IsValid()) {
        return false;
    }
    if ((event.modifiers() & Qt::ShiftModifier) != 0) {
        m_grid.ExtendSelectionTo(target);
    } else {
        m_grid.SetFocusCell(target);
    }
    return true;
}

bool GridKeys::PressTab(const QKeyEvent& event, CCellID focus) {
    if (HasCommandModifier(event)) {
        return false;
    }
    const bool back = event.key() == Qt::Key_Backtab || (event.modifiers() & Qt::ShiftModifier) != 0;
    CCellID target = Step(focus, back ? Move::Left : Move::Right);
    if (!target.IsValid()) {
        const CCellID other = Step(focus, back ? Move::Up : Move::Down);
        if (!other.IsValid()) {
            return false;  // at the end the key leaves the grid
        }
        target = m_grid.MergeOrigin(other.row, back ? LastCell().col : FirstCell().col);
    }
    m_grid.SetFocusCell(target);
    return true;
}

bool GridKeys::TypeInto(const QKeyEvent& event, CCellID focus) {
    if (!IsTyping(event) || m_grid.EditingOf(focus) != CellEditing::Text) {
        return false;
    }
    return m_grid.BeginEditByTyping(event);
}

bool GridKeys::OpenChoices(CCellID focus) {
    return m_grid.EditingOf(focus) == CellEditing::Choice && m_grid.BeginEdit(focus.row, focus.col);
}

bool GridKeys::PressSpace(const QKeyEvent& event, CCellID focus) {
    if (m_grid.EditingOf(focus) == CellEditing::Text) {
        return TypeInto(event, focus);
    }
    return !HasCommandModifier(event) && (OpenChoices(focus) || m_grid.PressButton(focus, 0));
}

bool GridKeys::ClearText(CCellID focus) {
    const CCellRange selected = m_grid.GetSelectedCellRange();
    if (m_grid.EditingOf(focus) != CellEditing::Text ||
        selected != m_grid.MergeExtent(focus.row, focus.col)) {
        return false;
    }
    m_grid.TakeEditedText(focus, {});
    return true;
}

}  // namespace quorvane
