#include "grid/input/grid_mouse.h"

#include <QApplication>
#include <algorithm>

#include "grid/grid_core.h"

namespace quorvane {

using Kind = GridCommand::Kind;

void GridMouse::Reset() {
    m_action = Action::None;
    m_button = -1;
    m_pressed = {};
    m_drop = {};
}

std::optional<int> GridMouse::EdgeAt(const QPoint& position) const {
    constexpr int kReach = 3;
    const GridLayout& layout = m_core.Layout();
    // Left of the edge first, so that of several edges at one place the last visible column's is taken.
    for (const int x : {position.x() + kReach, position.x() - kReach, position.x()}) {
        const CCellID cell = layout.CellAt({x, position.y()});
        if (!cell.IsValid() || cell.row >= layout.rows.FixedCount()) {
            continue;
        }
        const GridAxis::Span span = layout.columns.ScreenSpan(cell.col, cell.col);
        const bool endsBlock = m_core.Extent(cell).maxCol == cell.col;
        if (endsBlock && std::abs(span.start + span.length - position.x()) <= kReach) {
            return cell.col;
        }
    }
    return std::nullopt;
}

int GridMouse::ButtonAt(CCellID cell, const QPoint& position) const {
    const CGridCellBase* source = m_core.Cell(cell);
    return source == nullptr ? -1
                             : source->BtnAt(m_core.CellRect(cell).adjusted(0, 0, -1, -1),
                                             m_core.FontOf(*source), position);
}

// ---- Pressing

GridCommand GridMouse::Press(const QMouseEvent& event) {
    m_last = event.position().toPoint();
    m_clickDone = false;
    if (event.button() == Qt::LeftButton) {
        return PressLeft(event);
    }
    // A context menu is about what lies under the mouse, unless that is selected already.
    const CCellID cell = m_core.CellAt(m_last);
    if (event.button() != Qt::RightButton || !cell.IsValid()) {
        return {Kind::Nothing};
    }
    if (IsHead(cell)) {
        const CCellRange lines = LinesOf(cell);
        const bool selects = m_core.Layout().Holds(lines) && !m_core.Selection().Covers(lines);
        return {selects ? Kind::SelectLines : Kind::Nothing, {lines.minRow, lines.minCol}, 0, lines};
    }
    return {m_core.Selection().IsSelected(cell) ? Kind::Nothing : Kind::Focus, cell};
}

bool GridMouse::IsHead(CCellID cell) const {
    const CGridCellBase* source = m_core.Cell(cell);
    return m_core.Layout().IsFixed(cell) ||
           (source != nullptr && (source->GetState() & CellState::RowHead) != 0);
}

CCellRange GridMouse::LinesOf(CCellID head) const {
    const GridLayout& layout = m_core.Layout();
    const CCellRange block = m_core.Extent(head);
    const bool columns = head.row < layout.rows.FixedCount();
    CCellRange lines = layout.ScrollingCells();
    if (columns && head.col >= layout.columns.FixedCount()) {
        lines.minCol = block.minCol;
        lines.maxCol = block.maxCol;
    } else if (!columns) {
        lines.minRow = block.minRow;
        lines.maxRow = block.maxRow;
    }
    return lines;
}

GridCommand GridMouse::PressLeft(const QMouseEvent& event) {
    Reset();
    if (const std::optional<int> edge = EdgeAt(m_last)) {
        const GridAxis::Span span = m_core.Layout().columns.ScreenSpan(*edge, *edge);
        m_action = Action::ColumnEdge;
        m_edgeColumn = *edge;
        m_edgeOffset = span.start + span.length - m_last.x();
        return {Kind::Nothing};
    }
    const CCellID cell = m_core.CellAt(m_last);
    if (!cell.IsValid()) {
        return {Kind::Nothing};
    }
    if (IsOnFrame(m_last) && ButtonAt(cell, m_last) < 0 && event.modifiers() == Qt::NoModifier) {
        return PressFrame(cell);
    }
    return IsHead(cell) ? PressHeading(cell, event.modifiers()) : PressCell(cell, event);
}

GridCommand GridMouse::PressHeading(CCellID cell, Qt::KeyboardModifiers modifiers) {
    const GridLayout& layout = m_core.Layout();
    const bool rowFixed = cell.row < layout.rows.FixedCount();
    if (rowFixed && cell.col < layout.columns.FixedCount()) {
        return {Kind::SelectAll};
    }
    m_button = ButtonAt(cell, m_last);
    if (m_button >= 0) {
        m_action = Action::Button;
        m_isInside = true;
        m_pressed = cell;
        return {Kind::Redraw, cell};
    }
    const CCellRange lines = LinesOf(cell);
    if (!layout.Holds(lines)) {
        return {Kind::Nothing};
    }
    m_action = rowFixed ? Action::Columns : Action::Rows;
    m_pressed = {lines.minRow, lines.minCol};
    return {Kind::SelectLines, m_pressed, 0, lines, modifiers};
}

bool GridMouse::IsOnFrame(const QPoint& position) const {
    constexpr int kReach = 2;
    const std::vector<CCellRange>& ranges = m_core.Selection().Ranges();
    const CCellID cell = m_core.CellAt(position);
    if (ranges.size() != 1 || !cell.IsValid() || IsHead(cell) ||
        IsHead({ranges.front().minRow, ranges.front().minCol})) {
        return false;
    }
    const QRect block = m_core.Layout().BlockRect(ranges.front());
    return block.contains(position) && !block.adjusted(kReach, kReach, -kReach, -kReach).contains(position);
}

GridCommand GridMouse::PressFrame(CCellID cell) {
    m_action = Action::Block;
    m_block = m_core.Selection().Ranges().front();
    m_grip = m_core.Layout().CellAt(m_last);
    m_grippedAt = m_last;
    m_pressed = cell;
    m_hadFocus = m_core.Focus() == cell;
    return {Kind::Nothing};
}

CCellRange GridMouse::DropRange() const {
    if (!m_drop.IsValid()) {
        return {};
    }
    return {m_drop.row, m_drop.col, m_drop.row + m_block.RowCount() - 1,
            m_drop.col + m_block.ColumnCount() - 1};
}

GridCommand GridMouse::PressCell(CCellID cell, const QMouseEvent& event) {
    m_hadFocus = m_core.Focus() == cell;
    m_pressed = cell;
    m_button = ButtonAt(cell, m_last);
    m_isInside = m_button >= 0;
    m_action = m_isInside ? Action::Button : Action::Cells;
    if (!m_isInside && (event.modifiers() & Qt::ShiftModifier) != 0) {
        return {Kind::Extend, cell};
    }
    if (!m_isInside && (event.modifiers() & Qt::ControlModifier) != 0) {
        return {Kind::Add, cell};
    }
    return {Kind::Focus, cell};
}

// ---- Dragging

GridCommand GridMouse::Drag(const QPoint& position) {
    m_last = position;
    switch (m_action) {
        case Action::None:
            return {Kind::Nothing};
        case Action::ColumnEdge: {
            const int start = m_core.Layout().columns.ScreenSpan(m_edgeColumn, m_edgeColumn).start;
            return {Kind::ColumnWidth, CCellID{0, m_edgeColumn},
                    std::max(kSmallestColumn, position.x() + m_edgeOffset - start)};
        }
        case Action::Button:
            m_isInside = m_core.CellAt(position) == m_pressed && ButtonAt(m_pressed, position) == m_button;
            return {Kind::Redraw, m_pressed};
        case Action::Block:
            return DragBlock();
        default:
            return DragSelection();
    }
}

GridCommand GridMouse::DragBlock() {
    const CCellID cell = NearestCell();
    const bool isStill = (m_last - m_grippedAt).manhattanLength() < QApplication::startDragDistance();
    if (!cell.IsValid() || (!m_drop.IsValid() && isStill)) {
        return {Kind::Nothing};
    }
    const CCellRange all = m_core.Layout().ScrollingCells();
    m_drop = {std::max(all.minRow, m_block.minRow + cell.row - m_grip.row),
              std::max(all.minCol, m_block.minCol + cell.col - m_grip.col)};
    return {Kind::DragBlock};
}

CCellID GridMouse::NearestCell() const {
    const GridLayout& layout = m_core.Layout();
    const QRect area = layout.BodyArea();
    const qint64 bottom = layout.rows.Start(layout.rows.Count()) - layout.rows.Scroll() - 1;
    const qint64 right = layout.columns.Start(layout.columns.Count()) - layout.columns.Scroll() - 1;
    if (area.isEmpty() || bottom < area.top() || right < area.left()) {
        return {};
    }
    const auto inside = [](int position, int first, qint64 end, int last) {
        return std::clamp(position, first, static_cast<int>(std::min<qint64>(end, last)));
    };
    return layout.CellAt({inside(m_last.x(), area.left(), right, area.right()),
                          inside(m_last.y(), area.top(), bottom, area.bottom())});
}

GridCommand GridMouse::DragSelection() const {
    const GridLayout& layout = m_core.Layout();
    CCellID cell = NearestCell();
    if (!cell.IsValid()) {
        return {Kind::Nothing};
    }
    if (m_action == Action::Rows) {
        cell.col = layout.columns.Count() - 1;
    } else if (m_action == Action::Columns) {
        cell.row = layout.rows.Count() - 1;
    }
    const CCellRange selected = m_core.SelectedRange();
    const bool hasMoved = cell != m_pressed || selected.RowCount() > 1 || selected.ColumnCount() > 1;
    return {hasMoved ? Kind::Drag : Kind::Nothing, cell};
}

QPoint GridMouse::Overshoot() const {
    if (m_action == Action::None || m_action == Action::Button || m_action == Action::ColumnEdge) {
        return {};
    }
    const QRect area = m_core.Layout().BodyArea();
    const auto beyond = [](int position, int first, int last) {
        return position < first ? position - first : std::max(0, position - last);
    };
    return {m_action == Action::Rows ? 0 : beyond(m_last.x(), area.left(), area.right()),
            m_action == Action::Columns ? 0 : beyond(m_last.y(), area.top(), area.bottom())};
}

// ---- Releasing

GridCommand GridMouse::Release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) {
        return {Kind::Nothing};
    }
    const QPoint position = event.position().toPoint();
    const GridMouse was = *this;
    Reset();
    if (was.m_action == Action::Button) {
        return {was.m_isInside ? Kind::PressButton : Kind::Redraw, was.m_pressed, was.m_button};
    }
    if (was.m_action == Action::ColumnEdge) {
        return {Kind::ColumnsArranged};
    }
    if (was.m_drop.IsValid()) {
        return {Kind::MoveBlock, was.m_drop, 0, was.m_block, event.modifiers()};
    }
    const bool pressedFrame = was.m_action == Action::Block;
    if (pressedFrame && was.m_block != m_core.Extent(was.m_pressed)) {
        return {Kind::Focus, was.m_pressed};
    }
    const bool clicks = (was.m_action == Action::Cells || pressedFrame) &&
                        m_core.CellAt(position) == was.m_pressed && !m_clickDone &&
                        (event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) == 0;
    m_opensChoices = clicks && m_hadFocus && m_core.EditingOf(was.m_pressed) == CellEditing::Choice;
    return {clicks ? Kind::Click : Kind::Nothing, was.m_pressed};
}

GridCommand GridMouse::DoubleClick(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton || (m_action != Action::Cells && m_action != Action::Block)) {
        return {Kind::Nothing};
    }
    const CCellID cell = m_pressed;
    const CellEditing editing = m_core.EditingOf(cell);
    m_clickDone = editing != CellEditing::Choice;
    if (editing != CellEditing::Text) {
        return {Kind::Nothing};
    }
    Reset();
    return {Kind::Edit, cell};
}

}  // namespace quorvane
