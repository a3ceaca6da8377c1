// The events of CGridCtrl; each goes to the unit that knows what it means.
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include "grid/cells/cell_text.h"
#include "grid/grid_controller.h"
#include "grid/grid_ctrl.h"
#include "grid/grid_painter.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

// ---- Painting and sizes

void CGridCtrl::paintEvent(QPaintEvent* event) {
    m_controller->Painted();
    const GridMouse& mouse = m_controller->Mouse();
    const GridLooks looks{.palette = palette(),
                          .background = m_background,
                          .enabled = isEnabled(),
                          .hasFocus = hasFocus(),
                          .pressedCell = mouse.PressedCell(),
                          .pressedButton = mouse.PressedButton(),
                          .widget = this,
                          .images = &m_images};
    QPainter painter(viewport());
    GridPainter(Core(), looks, painter).Paint(event->rect());
}

void CGridCtrl::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    m_controller->SyncScrollBars();
    m_controller->PlaceEditor();
}

void CGridCtrl::scrollContentsBy(int /*dx*/, int /*dy*/) {
    m_controller->FollowScrollBars();
}

void CGridCtrl::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_controller->FollowFont();
    }
}

QSize CGridCtrl::sizeHint() const {
    constexpr int kColumns = 6;
    constexpr int kRows = 10;
    return {Core().Layout().columns.DefaultSize() * kColumns, Core().Layout().rows.DefaultSize() * kRows};
}

void CGridCtrl::ShowTip(const QPoint& position, const QPoint& globalPosition) {
    const CCellID id = CellAt(position);
    const CGridCellBase* cell = Core().Cell(id);
    const QRect rect = Core().CellRect(id);
    const auto isCut = [&] {
        const QFont font = Core().FontOf(*cell);
        const QSize room = cell->TextRect(rect.adjusted(0, 0, -1, -1), font).size();
        return !CellTextFits(font, room, cell->GetTipText(), cell->GetFormat());
    };
    if (cell == nullptr || cell->GetTipText().isEmpty() || !isCut()) {
        QToolTip::hideText();
        return;
    }
    constexpr qsizetype kMostCharacters = 2000;
    // Escaped, so that a text that looks like markup is shown as it was typed.
    const CString text = cell->GetTipText().left(kMostCharacters).toHtmlEscaped();
    QToolTip::showText(globalPosition, u"<div style='white-space:pre-wrap'>%1</div>"_s.arg(text), viewport(),
                       rect);
}

// ---- Keys and input methods

bool CGridCtrl::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        m_controller->FollowLayout();
    }
    if (event->type() == QEvent::KeyPress) {
        // Tab reaches keyPressEvent only after it has moved the focus out of the grid.
        auto& key = static_cast<QKeyEvent&>(*event);
        const bool tab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
        if (tab && (key.modifiers() & Qt::ControlModifier) != 0) {
            const bool back = key.key() == Qt::Key_Backtab || (key.modifiers() & Qt::ShiftModifier) != 0;
            return focusNextPrevChild(!back);
        }
        const GridCommand command = tab && !IsEditing() ? CommandOfKey(Core(), key) : GridCommand{};
        if (command.kind != GridCommand::Kind::PassOn) {
            return m_controller->Execute(command);
        }
    }
    return QAbstractScrollArea::event(event);
}

void CGridCtrl::keyPressEvent(QKeyEvent* event) {
    // While an editor is open, only keys that it has no use for come here.
    if (m_controller->PassToEditor(*event)) {
        return;
    }
    event->setAccepted(!IsEditing() && m_controller->Execute(CommandOfKey(Core(), *event), event));
}

void CGridCtrl::inputMethodEvent(QInputMethodEvent* event) {
    event->setAccepted(m_controller->Compose(*event));
    updateMicroFocus();
}

QVariant CGridCtrl::inputMethodQuery(Qt::InputMethodQuery query) const {
    const CCellID focus = GetFocusCell();
    const QLineEdit* editor = m_controller->Edit().Editor();
    if (m_controller->Edit().IsComposing()) {
        const QVariant answer = editor->inputMethodQuery(query);
        return query == Qt::ImCursorRectangle ? answer.toRect().translated(viewport()->pos() + editor->pos())
                                              : answer;
    }
    switch (query) {
        case Qt::ImEnabled:
            return EditingOf(focus) == CellEditing::Text;
        case Qt::ImCursorRectangle:
            return Core().CellRect(focus).translated(viewport()->pos());
        case Qt::ImFont:
            return font();
        default:
            return QAbstractScrollArea::inputMethodQuery(query);
    }
}

void CGridCtrl::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    m_controller->Redraw();
    m_controller->Announcer().FocusCame();
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (byKey && !GetFocusCell().IsValid()) {
        MutableCore().FocusWithoutSelecting(FirstVisible(Core()));
    }
}

void CGridCtrl::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    m_controller->Redraw();
    if (m_controller->Edit().IsComposing() && InPlaceEdit::EndsEdit(*event)) {
        m_controller->EndEdit();
    }
}

// ---- Mouse

bool CGridCtrl::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        ShowTip(help.pos(), help.globalPos());
        return true;
    }
    if (event->type() == QEvent::Leave) {
        viewport()->setCursor(Qt::ArrowCursor);
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void CGridCtrl::mousePressEvent(QMouseEvent* event) {
    m_controller->MousePress(*event);
}

void CGridCtrl::mouseMoveEvent(QMouseEvent* event) {
    m_controller->MouseMove(*event);
}

void CGridCtrl::mouseReleaseEvent(QMouseEvent* event) {
    m_controller->MouseRelease(*event);
}

void CGridCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    m_controller->MouseDoubleClick(*event);
}

}  // namespace quorvane
