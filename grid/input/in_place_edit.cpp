#include "grid/input/in_place_edit.h"

#include <QFocusEvent>
#include <limits>
#include <utility>

#include "grid/accessibility/grid_accessible.h"
#include "grid/cells/cell_text.h"
#include "grid/grid_ctrl.h"

namespace quorvane {

InPlaceEdit::InPlaceEdit(CGridCtrl& grid) : m_grid(grid) {}

void InPlaceEdit::Begin(CCellID cell, Start start) {
    const CGridCellBase& source = *m_grid.Cell(cell.row, cell.col);
    m_cell = cell;
    m_isRemade = false;
    m_editor = new QLineEdit(m_grid.viewport());
    m_editor->setObjectName(QStringLiteral("gridInPlaceEdit"));
    m_editor->setAccessibleName(ColumnHeadingText(m_grid, cell.col));
    m_editor->setFrame(false);
    m_editor->setMaxLength(std::numeric_limits<int>::max());
    m_editor->setFont(source.GetFont().value_or(m_grid.font()));
    m_editor->setAlignment(CellTextAlignment(source.GetFormat()) & ~Qt::AlignAbsolute);
    if (start != Start::Empty) {
        m_editor->setText(source.GetText());
    }
    m_editor->installEventFilter(this);
    Place();
    m_editor->show();
    m_editor->setFocus();
    if (start == Start::AllSelected) {
        m_editor->selectAll();
    }
}

void InPlaceEdit::Place() {
    if (!IsOn()) {
        return;
    }
    const QRect rect = m_grid.CellRect(m_cell.row, m_cell.col).adjusted(0, 0, -1, -1);
    const QRect visible = rect & m_grid.Layout().ScrollingArea();
    m_editor->setGeometry(rect);
    if (visible.isEmpty()) {
        m_editor->move(-rect.width() - 1, -rect.height() - 1);  // an empty mask would show it whole
        m_editor->clearMask();
    } else if (visible == rect) {
        m_editor->clearMask();
    } else {
        m_editor->setMask(visible.translated(-rect.topLeft()));
    }
}

void InPlaceEdit::FollowCell(CCellID cell) {
    if (!IsOn() || cell == m_cell) {
        return;
    }
    if (cell.IsValid()) {
        m_cell = cell;
    } else {
        Cancel();
    }
}

void InPlaceEdit::RowsRemade(int first, int last) {
    m_isRemade = m_isRemade || (m_cell.row >= first && m_cell.row <= last);
}

void InPlaceEdit::Refresh() {
    if (!IsOn()) {
        return;
    }
    if (std::exchange(m_isRemade, false)) {
        if (m_grid.EditingOf(m_cell) != CellEditing::Text) {
            Cancel();
            return;
        }
        if (!m_editor->isModified()) {
            m_editor->setText(m_grid.GetItemText(m_cell.row, m_cell.col));
        }
    }
    Place();
}

CString InPlaceEdit::Text() const {
    return m_editor->isModified() ? m_editor->text() : m_grid.GetItemText(m_cell.row, m_cell.col);
}

void InPlaceEdit::Close() {
    QLineEdit* editor = m_editor;
    m_editor.clear();
    editor->removeEventFilter(this);
    // The name goes too, so that nobody finds an editor that only waits to be destroyed.
    editor->setObjectName(QString());
    if (m_grid.window()->focusWidget() == editor) {
        m_grid.setFocus();
    }
    editor->hide();
    editor->deleteLater();
}

void InPlaceEdit::End() {
    Refresh();
    if (!IsOn()) {
        return;
    }
    const CString text = Text();
    Close();
    m_grid.TakeEditedText(m_cell, text);
}

void InPlaceEdit::Cancel() {
    if (IsOn()) {
        Close();
    }
}

void InPlaceEdit::EndAndMove(GridKeys::Move move, bool goOn) {
    const QPointer<CGridCtrl> grid(&m_grid);
    const CCellID edited = m_cell;
    End();
    if (grid.isNull() || grid->IsEditing()) {
        return;
    }
    if (goOn) {
        grid->Keys().GoOnEditing(edited, move);
        return;
    }
    const CCellID target = grid->Keys().Step(grid->GetFocusCell(), move);
    if (target.IsValid()) {
        grid->SetFocusCell(target);
    }
}

bool InPlaceEdit::PressKey(const QKeyEvent& event) {
    using Move = GridKeys::Move;
    const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
    if ((event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return false;
    }
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            EndAndMove(shift ? Move::Up : Move::Down, true);
            return true;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: {
            const bool back = shift || event.key() == Qt::Key_Backtab;
            EndAndMove(back ? Move::PreviousEditable : Move::NextEditable, true);
            return true;
        }
        case Qt::Key_Up:
            EndAndMove(Move::Up, false);
            return true;
        case Qt::Key_Down:
            EndAndMove(Move::Down, false);
            return true;
        case Qt::Key_Escape:
            Cancel();
            return true;
        default:
            return false;
    }
}

bool InPlaceEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_editor) {
        return false;
    }
    if (event->type() == QEvent::ShortcutOverride) {
        // Esc belongs to the edit, not to a dialog or menu that has it as a shortcut.
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
        return false;
    }
    if (event->type() == QEvent::KeyPress) {
        return PressKey(static_cast<const QKeyEvent&>(*event));
    }
    if (event->type() == QEvent::FocusOut &&
        static_cast<const QFocusEvent&>(*event).reason() != Qt::PopupFocusReason) {
        // The editor itself must see the event, too, or its caret would go on blinking.
        const bool handled = m_editor->event(event);
        End();
        return handled;
    }
    return false;
}

}  // namespace quorvane
