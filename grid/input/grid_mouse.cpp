#include "grid/input/grid_mouse.h"

#include <QApplication>
#include <QPointer>
#include <QScrollBar>
#include <algorithm>
#include <chrono>

#include "grid/grid_ctrl.h"

namespace quorvane {

GridMouse::GridMouse(CGridCtrl& grid) : m_grid(grid) {
    m_scrollTimer.setInterval(std::chrono::milliseconds(40));
    connect(&m_scrollTimer, &QTimer::timeout, this, &GridMouse::ScrollOn);
}

void GridMouse::Reset() {
    m_scrollTimer.stop();
    m_action = Action::None;
    m_button = -1;
    m_pressed = {};
}

CCellID GridMouse::OriginAt(const QPoint& position) const {
    const CCellID cell = m_grid.Layout().CellAt(position);
    return cell.IsValid() ? m_grid.MergeOrigin(cell.row, cell.col) : cell;
}

std::optional<int> GridMouse::EdgeAt(const QPoint& position) const {
    constexpr int Reach = 3;
    const GridLayout& layout = m_grid.Layout();
    // Left of the edge first, so that of several edges at one place the last visible column's is taken.
    for (const int x : {position.x() + Reach, position.x() - Reach, position.x()}) {
        const CCellID cell = layout.CellAt({x, position.y()});
        if (!cell.IsValid() || cell.row >= layout.rows.FixedCount()) {
            continue;
        }
        const GridAxis::Span span = layout.columns.ScreenSpan(cell.col, cell.col);
        const bool wholeBlock = m_grid.MergeExtent(cell.row, cell.col).maxCol == cell.col;
        if (wholeBlock && std::abs(span.start + span.length - position.x()) <= Reach) {
            return cell.col;
        }
    }
    return std::nullopt;
}

void GridMouse::Press(const QMouseEvent& event) {
    const QPointer<CGridCtrl> grid(&m_grid);
    m_grid.EndEdit();
    if (grid.isNull()) {
        return;
    }
    const QPoint position = event.position().toPoint();
    m_last = position;
    m_clickDone = false;
    if (event.button() == Qt::LeftButton) {
        PressLeft(event, position);
    } else if (event.button() == Qt::RightButton) {
        // A context menu is about what lies under the mouse, unless that is selected already.
        const CCellID cell = OriginAt(position);
        if (cell.IsValid() && !m_grid.Layout().IsFixed(cell) && !m_grid.IsSelected(cell.row, cell.col)) {
            m_grid.SetFocusCell(cell);
        }
    }
}

void GridMouse::PressLeft(const QMouseEvent& event, const QPoint& position) {
    Reset();
    if (const std::optional<int> edge = EdgeAt(position)) {
        const GridAxis::Span span = m_grid.Layout().columns.ScreenSpan(*edge, *edge);
        m_action = Action::ColumnEdge;
        m_edgeColumn = *edge;
        m_edgeOffset = span.start + span.length - position.x();
        return;
    }
    const CCellID cell = OriginAt(position);
    if (!cell.IsValid()) {
        return;
    }
    if (m_grid.Layout().IsFixed(cell)) {
        PressHeading(cell, event.modifiers());
    } else {
        PressCell(cell, event);
    }
}

void GridMouse::PressHeading(CCellID cell, Qt::KeyboardModifiers modifiers) {
    const bool rowFixed = cell.row < m_grid.GetFixedRowCount();
    const bool columnFixed = cell.col < m_grid.GetFixedColumnCount();
    if (rowFixed && columnFixed) {
        m_grid.SelectAllCells();
        return;
    }
    m_action = rowFixed ? Action::Columns : Action::Rows;
    SelectLines(cell, modifiers);
}

void GridMouse::SelectLines(CCellID cell, Qt::KeyboardModifiers modifiers) {
    const CCellRange all = m_grid.Layout().ScrollingCells();
    const CCellRange block = m_grid.MergeExtent(cell.row, cell.col);
    CCellRange lines = all;
    if (m_action == Action::Rows) {
        lines.minRow = block.minRow;
        lines.maxRow = block.maxRow;
    } else {
        lines.minCol = block.minCol;
        lines.maxCol = block.maxCol;
    }
    if (!m_grid.IsValid(lines)) {
        m_action = Action::None;
        return;
    }
    m_pressed = {lines.minRow, lines.minCol};
    m_grid.SelectLines(lines, modifiers);
}

void GridMouse::PressCell(CCellID cell, const QMouseEvent& event) {
    m_hadFocus = m_grid.GetFocusCell() == cell;
    m_pressed = cell;
    m_button = m_grid.ButtonAt(cell, event.position().toPoint());
    m_isInside = m_button >= 0;
    m_action = m_isInside ? Action::Button : Action::Cells;
    if (m_isInside) {
        m_grid.SetFocusCell(cell);
    } else if ((event.modifiers() & Qt::ShiftModifier) != 0) {
        m_grid.ExtendSelectionTo(cell);
    } else if ((event.modifiers() & Qt::ControlModifier) != 0) {
        m_grid.AddToSelection(cell);
    } else {
        m_grid.SetFocusCell(cell);
    }
}

void GridMouse::Move(const QMouseEvent& event) {
    const QPoint position = event.position().toPoint();
    if ((event.buttons() & Qt::LeftButton) == 0) {
        m_grid.viewport()->setCursor(EdgeAt(position) ? Qt::SplitHCursor : Qt::ArrowCursor);
        return;
    }
    if ((position - m_last).isNull()) {
        return;
    }
    m_last = position;
    if (m_action == Action::ColumnEdge) {
        DragEdge(position.x());
    } else if (m_action == Action::Button) {
        m_isInside = OriginAt(position) == m_pressed && m_grid.ButtonAt(m_pressed, position) == m_button;
        m_grid.viewport()->update(m_grid.CellRect(m_pressed.row, m_pressed.col));
    } else if (m_action != Action::None) {
        const bool outside = !m_grid.Layout().ScrollingArea().contains(position);
        if (outside && !m_scrollTimer.isActive()) {
            m_scrollTimer.start();
        } else if (!outside) {
            m_scrollTimer.stop();
        }
        DragTo(position);
    }
}

void GridMouse::DragEdge(int x) {
    const int start = m_grid.Layout().columns.ScreenSpan(m_edgeColumn, m_edgeColumn).start;
    m_grid.SetColumnWidth(m_edgeColumn, std::max(SmallestColumn, x + m_edgeOffset - start));
}

void GridMouse::DragTo(const QPoint& position) {
    const GridLayout& layout = m_grid.Layout();
    const QRect area = layout.ScrollingArea();
    const qint64 bottom = layout.rows.Start(layout.rows.Count()) - layout.rows.Scroll() - 1;
    const qint64 right = layout.columns.Start(layout.columns.Count()) - layout.columns.Scroll() - 1;
    if (area.isEmpty() || bottom < area.top() || right < area.left()) {
        return;
    }
    const int x =
        std::clamp(position.x(), area.left(), static_cast<int>(std::min<qint64>(right, area.right())));
    const int y =
        std::clamp(position.y(), area.top(), static_cast<int>(std::min<qint64>(bottom, area.bottom())));
    CCellID cell = layout.CellAt({x, y});
    if (!cell.IsValid()) {
        return;
    }
    const CCellRange all = layout.ScrollingCells();
    if (m_action == Action::Rows) {
        cell.col = all.maxCol;
    } else if (m_action == Action::Columns) {
        cell.row = all.maxRow;
    }
    if (cell != m_pressed || m_grid.GetSelectedCellRange().RowCount() > 1 ||
        m_grid.GetSelectedCellRange().ColumnCount() > 1) {
        m_grid.DragSelectionTo(cell);
    }
}

void GridMouse::ScrollOn() {
    const QRect area = m_grid.Layout().ScrollingArea();
    const auto beyond = [](int position, int first, int last) {
        return position < first ? position - first : std::max(0, position - last);
    };
    const int across = m_action == Action::Rows ? 0 : beyond(m_last.x(), area.left(), area.right());
    const int down = m_action == Action::Columns ? 0 : beyond(m_last.y(), area.top(), area.bottom());
    m_grid.horizontalScrollBar()->setValue(m_grid.horizontalScrollBar()->value() + across);
    m_grid.verticalScrollBar()->setValue(m_grid.verticalScrollBar()->value() + down);
    DragTo(m_last);
}

void GridMouse::Release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) {
        return;
    }
    const QPoint position = event.position().toPoint();
    const Action action = m_action;
    const CCellID pressed = m_pressed;
    const int button = m_button;
    const bool isInside = m_isInside;
    Reset();
    if (action == Action::Button) {
        m_grid.viewport()->update(m_grid.CellRect(pressed.row, pressed.col));
        if (isInside) {
            m_grid.PressButton(pressed, button);
        }
    } else if (action == Action::Cells && OriginAt(position) == pressed && !m_clickDone &&
               (event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) == 0) {
        Click(pressed);
    }
}

void GridMouse::Click(CCellID cell) {
    const bool opensChoices = m_hadFocus && m_grid.EditingOf(cell) == CellEditing::Choice;
    const QPointer<CGridCtrl> grid(&m_grid);
    Q_EMIT m_grid.CellClicked(cell.row, cell.col);
    if (opensChoices && !grid.isNull() && m_grid.GetFocusCell() == cell) {
        m_grid.BeginEdit(cell.row, cell.col);
    }
}

void GridMouse::DoubleClick(const QMouseEvent& event) {
    const QPoint position = event.position().toPoint();
    const std::optional<int> edge = EdgeAt(position);
    if (event.button() == Qt::LeftButton && edge) {
        m_grid.AutoSizeColumn(*edge);
        return;
    }
    const QPointer<CGridCtrl> grid(&m_grid);
    Press(event);
    if (grid.isNull() || event.button() != Qt::LeftButton || m_action != Action::Cells) {
        return;
    }
    const CCellID cell = m_pressed;
    m_clickDone = m_grid.EditingOf(cell) != CellEditing::Choice;
    if (m_grid.EditingOf(cell) == CellEditing::Text) {
        Reset();
        m_grid.BeginEdit(cell.row, cell.col);
    }
}

}  // namespace quorvane
