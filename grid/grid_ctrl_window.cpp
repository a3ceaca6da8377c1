// The events of CGridCtrl; each goes to the unit that knows what it means.
#include <QBuffer>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <QUrl>

#include "grid/cells/cell_text.h"
#include "grid/grid_controller.h"
#include "grid/grid_ctrl.h"
#include "grid/grid_painter.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

namespace {

// Escaped, so that a text that looks like markup is shown as it was typed.
QString TipMarkup(const QString& text, const QImage& picture) {
    constexpr qsizetype kMostCharacters = 2000;
    QString markup =
        u"<div style='white-space:pre-wrap'>%1</div>"_s.arg(text.left(kMostCharacters).toHtmlEscaped());
    if (!picture.isNull()) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        picture.save(&buffer, "PNG");
        markup += u"<img src='data:image/png;base64,%1'>"_s.arg(QLatin1StringView(bytes.toBase64()));
    }
    return markup;
}

// The files that are dragged; none when anything else is among them.
QStringList PathsIn(const QDropEvent& event) {
    QStringList paths;
    for (const QUrl& url : event.mimeData()->urls()) {
        if (!url.isLocalFile()) {
            return {};
        }
        paths << url.toLocalFile();
    }
    return paths;
}

}  // namespace

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
                          .dropRange = mouse.DropRange(),
                          .widget = this,
                          .images = &m_images,
                          .marks = &m_marks,
                          .highlights = &m_highlights};
    QPainter painter(viewport());
    GridPainter(Core(), looks, painter).Paint(event->rect());
}

void CGridCtrl::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    PlaceFootBar();
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

// ---- Foot bar

void CGridCtrl::SetFootBar(QWidget* bar) {
    if (m_footBar != nullptr) {
        m_footBar->removeEventFilter(this);
        m_footBar->deleteLater();
    }
    m_footBar = bar;
    if (bar != nullptr) {
        const bool isShown = !bar->isHidden();
        bar->setParent(this);
        bar->installEventFilter(this);
        bar->setVisible(isShown);
    }
    PlaceFootBar();
}

void CGridCtrl::PlaceFootBar() {
    const bool isShown = m_footBar != nullptr && !m_footBar->isHidden();
    const int height = isShown ? m_footBar->sizeHint().height() : 0;
    if (viewportMargins().bottom() != height) {
        const bool isFocusSeen = viewport()->rect().contains(Core().CellRect(GetFocusCell()));
        setViewportMargins(0, 0, 0, height);  // comes back here through resizeEvent
        if (isFocusSeen) {
            m_controller->EnsureVisible(GetFocusCell());
        }
    }
    if (isShown) {
        const QRect cells = viewport()->geometry();
        m_footBar->setGeometry(cells.left(), cells.bottom() + 1, cells.width(), height);
    }
}

bool CGridCtrl::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_footBar) {
        switch (event->type()) {
            case QEvent::HideToParent:
                if (m_footBar->isAncestorOf(window()->focusWidget())) {
                    setFocus();
                }
                PlaceFootBar();
                break;
            case QEvent::ShowToParent:
            case QEvent::LayoutRequest:
                PlaceFootBar();
                break;
            default:
                break;
        }
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

// ---- Tips and context menu

void CGridCtrl::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        m_controller->Execute({GridCommand::Kind::Menu, GetFocusCell()});
    } else {
        m_controller->PopUpMenu(event->globalPos());
    }
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
    const GridTip tip = TipOf(id);
    CString text = cell != nullptr && isCut() ? cell->GetTipText() : CString();
    text += text.isEmpty() || tip.text.isEmpty() ? tip.text : u'\n' + tip.text;
    if (text.isEmpty() && tip.picture.isNull()) {
        QToolTip::hideText();
        return;
    }
    m_tipPosition = position;
    m_tipMarkup = TipMarkup(text, tip.picture);
    QToolTip::showText(globalPosition, m_tipMarkup, viewport(), rect);
}

void CGridCtrl::RenewTip() {
    if (QToolTip::isVisible() && QToolTip::text() == m_tipMarkup) {
        ShowTip(m_tipPosition, viewport()->mapToGlobal(m_tipPosition));
    }
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
            bool isMoved = true;
            m_controller->Perform([this] { EndEdit(); }, [&, this] { isMoved = focusNextPrevChild(!back); });
            return isMoved;
        }
        const GridCommand command = tab && !IsEditing() ? CommandOfKey(Core(), key) : GridCommand{};
        if (command.kind != GridCommand::Kind::PassOn) {
            return m_controller->Execute(command);
        }
    }
    return QAbstractScrollArea::event(event);
}

void CGridCtrl::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && m_controller->CancelDrag()) {
        return;
    }
    // While an editor is open, only keys that it has no use for come here.
    if (m_controller->PassToEditor(*event)) {
        return;
    }
    const bool isBars = m_footBar != nullptr && m_footBar->isAncestorOf(window()->focusWidget());
    event->setAccepted(!isBars && !IsEditing() && m_controller->Execute(CommandOfKey(Core(), *event), event));
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

// ---- Files from outside

void CGridCtrl::dragEnterEvent(QDragEnterEvent* event) {
    event->setAccepted(!PathsIn(*event).isEmpty());
}

void CGridCtrl::dragMoveEvent(QDragMoveEvent* event) {
    const CCellID cell = CellAt(event->position().toPoint());
    const bool takes = cell.IsValid() && m_takesFiles && m_takesFiles(cell) && !PathsIn(*event).isEmpty();
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(takes);
}

void CGridCtrl::dropEvent(QDropEvent* event) {
    const CCellID cell = CellAt(event->position().toPoint());
    const QStringList paths = PathsIn(*event);
    if (!cell.IsValid() || !m_takesFiles || !m_takesFiles(cell) || paths.isEmpty()) {
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_controller->TakeFiles(cell, paths);
}

}  // namespace quorvane
