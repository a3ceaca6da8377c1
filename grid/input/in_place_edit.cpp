#include "grid/input/in_place_edit.h"

#include <QApplication>
#include <QFocusEvent>
#include <limits>
#include <memory>
#include <utility>

#include "grid/cells/cell_text.h"
#include "grid/grid_controller.h"
#include "grid/layout/line_shift.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

void InPlaceEdit::Begin(CCellID cell, Start start) {
    const GridCore& core = m_controller.Core();
    const CGridCellBase& source = *core.Cell(cell);
    m_cell = cell;
    m_isRemade = false;
    m_hasComposed = start == Start::Composing;
    m_preedit.clear();
    m_editor = new CellLineEdit(m_controller.Grid().viewport());
    m_editor->setObjectName(u"gridInPlaceEdit"_s);
    m_editor->setAccessibleName(core.ColumnHeadingText(cell.col));
    m_editor->setFrame(false);
    m_editor->setMaxLength(std::numeric_limits<int>::max());
    m_editor->setFont(core.FontOf(source));
    m_editor->setAlignment(CellTextAlignment(source.GetFormat()) & ~Qt::AlignAbsolute);
    if (start != Start::Empty && start != Start::Composing) {
        m_editor->setText(source.GetText());
    }
    m_shown = m_editor->text();
    m_editor->installEventFilter(this);
    connect(m_editor, &QLineEdit::textEdited, this,
            [this](const QString& text) { Q_EMIT m_controller.Grid().TextTyped(m_editor, text); });
    Place();
    m_editor->show();
    if (start != Start::Composing) {
        m_editor->setFocus();
    }
    if (start == Start::AllSelected) {
        m_editor->selectAll();
    }
}

void InPlaceEdit::Compose(const QInputMethodEvent& event) {
    m_preedit = event.preeditString();
    const std::unique_ptr<QInputMethodEvent> copy(event.clone());
    QCoreApplication::sendEvent(m_editor, copy.get());
    if (m_preedit.isEmpty()) {
        // Later, because the next composition may begin with the same key as this one has ended.
        QMetaObject::invokeMethod(
            m_editor,
            [this] {
                if (IsComposing() && m_preedit.isEmpty()) {
                    TakeKeyboard();
                }
            },
            Qt::QueuedConnection);
    }
}

void InPlaceEdit::TakeKeyboard() {
    m_hasComposed = false;
    m_editor->setFocus();
}

std::optional<CString> InPlaceEdit::Close() {
    if (IsComposing() && !m_preedit.isEmpty()) {
        // The input method sends this to whatever has the keyboard by now, so it is not waited for.
        QInputMethodEvent end;
        end.setCommitString(m_preedit);
        QCoreApplication::sendEvent(m_editor, &end);
    }
    Refresh();
    if (!IsOn()) {
        return std::nullopt;
    }
    // A line editor cannot hold every text, so one that was not changed is taken from the cell.
    CString text = IsTyped() ? m_editor->text() : m_controller.Core().Text(m_cell);
    Cancel();
    return text;
}

void InPlaceEdit::Cancel() {
    if (!IsOn()) {
        return;
    }
    CellLineEdit* editor = m_editor;
    m_editor.clear();
    if (!std::exchange(m_preedit, {}).isEmpty()) {
        m_dropsComposition = true;
        QGuiApplication::inputMethod()->reset();
        m_dropsComposition = false;
    }
    editor->removeEventFilter(this);
    // Without its name nobody finds an editor that only waits to be destroyed.
    editor->setObjectName(CString());
    CGridCtrl& grid = m_controller.Grid();
    if (grid.window()->focusWidget() == editor) {
        grid.setFocus();
    }
    editor->hide();
    editor->deleteLater();
}

void InPlaceEdit::Place() {
    if (!IsOn()) {
        return;
    }
    const QRect rect = m_controller.Core().CellRect(m_cell).adjusted(0, 0, -1, -1);
    const QRect visible = rect & m_controller.Core().Layout().AreaOf(m_cell);
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

void InPlaceEdit::FollowInsert(Qt::Orientation lines, int at, int count) {
    CCellID cell = m_cell;
    ShiftForInsert(cell, lines, at, count);
    FollowCell(cell);
}

void InPlaceEdit::FollowRemove(Qt::Orientation lines, int at, int count) {
    CCellID cell = m_cell;
    ShiftForRemove(cell, lines, at, count);
    FollowCell(cell);
}

void InPlaceEdit::FollowFixed() {
    FollowCell(m_controller.Core().Layout().IsFixed(m_cell) ? CCellID{} : m_cell);
}

void InPlaceEdit::FollowCell(CCellID cell) {
    if (IsOn() && cell.IsValid()) {
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
        if (m_controller.Core().EditingOf(m_cell) != CellEditing::Text) {
            Cancel();
            return;
        }
        if (!IsTyped()) {
            m_editor->setText(m_controller.Core().Text(m_cell));
            m_shown = m_editor->text();
        }
    }
    Place();
}

bool InPlaceEdit::PressKey(const QKeyEvent& event) {
    const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isEnter && (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier) {
        m_controller.EndEditAndFill();
        return true;
    }
    if ((event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return false;
    }
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            m_controller.EndEditAndMove(shift ? GridMove::Up : GridMove::Down, StepByEnter);
            return true;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: {
            const bool back = shift || event.key() == Qt::Key_Backtab;
            m_controller.EndEditAndMove(back ? GridMove::PreviousEditable : GridMove::NextEditable, Step);
            return true;
        }
        case Qt::Key_Up:
            m_controller.EndEditAndMove(GridMove::Up, Step);
            return true;
        case Qt::Key_Down:
            m_controller.EndEditAndMove(GridMove::Down, Step);
            return true;
        case Qt::Key_Escape:
            Cancel();
            return true;
        default:
            return false;
    }
}

bool InPlaceEdit::EndsEdit(const QFocusEvent& out) {
    return out.reason() != Qt::PopupFocusReason && out.reason() != Qt::ActiveWindowFocusReason;
}

bool InPlaceEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_editor) {
        return false;
    }
    if (event->type() == QEvent::ShortcutOverride) {
        // These belong to the edit, not to a dialog or menu that has them as a shortcut.
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isRedo = key.matches(QKeySequence::Redo) || key.keyCombination() == (Qt::CTRL | Qt::Key_Y);
        if (isRedo || (key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier)) {
            event->accept();
            return true;
        }
        return false;
    }
    if (event->type() == QEvent::KeyPress) {
        return PressKey(static_cast<const QKeyEvent&>(*event));
    }
    if (event->type() == QEvent::FocusOut && EndsEdit(static_cast<const QFocusEvent&>(*event))) {
        // The editor itself needs the event too, or its caret would go on blinking.
        const bool handled = m_editor->event(event);
        m_controller.EndEdit();
        return handled;
    }
    return false;
}

}  // namespace quorvane
