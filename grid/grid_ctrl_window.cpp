// The window side of CGridCtrl: scrolling, geometry and colours, and its events, each of which goes to the
// unit that knows what to do with it.
#include <QApplication>
#include <QCoreApplication>
#include <QDebug>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

#include "grid/accessibility/grid_announcer.h"
#include "grid/cells/cell_text.h"
#include "grid/grid_ctrl.h"
#include "grid/grid_painter.h"
#include "grid/input/grid_keys.h"
#include "grid/input/grid_mouse.h"
#include "grid/input/in_place_edit.h"

namespace quorvane {

// ---- Scrolling

void CGridCtrl::SizesChanged() {
    // The scroll bars follow at the end of the present event. So emptying and refilling the grid does not
    // lose the place that the user has scrolled to, and many changes cost no more than one.
    if (!m_isSyncDue) {
        m_isSyncDue = true;
        QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
    }
    m_edit->Place();
    RedrawAll();
}

void CGridCtrl::SyncScrollBars() {
    m_isSyncDue = false;
    m_layout.SetViewSize(viewport()->size());
    const QSize room = maximumViewportSize();
    // Without this each scroll bar might stand there only because the other one takes its room.
    const bool fits = m_layout.rows.Start(GetRowCount()) <= room.height() &&
                      m_layout.columns.Start(GetColumnCount()) <= room.width();
    const auto sync = [fits](QScrollBar& bar, const GridAxis& axis, int step) {
        bar.setRange(0, fits ? 0 : axis.MaxScroll());
        bar.setPageStep(std::max(1, axis.ViewLength() - axis.FixedLength()));
        bar.setSingleStep(step);
    };
    sync(*verticalScrollBar(), m_layout.rows, m_layout.rows.DefaultSize());
    sync(*horizontalScrollBar(), m_layout.columns, QFontMetrics(font()).horizontalAdvance(u'0') * 3);
}

void CGridCtrl::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    SyncScrollBars();
    m_edit->Place();
}

void CGridCtrl::scrollContentsBy(int /*dx*/, int /*dy*/) {
    m_layout.rows.SetScroll(verticalScrollBar()->value());
    m_layout.columns.SetScroll(horizontalScrollBar()->value());
    m_edit->Place();
    RedrawAll();
}

QSize CGridCtrl::sizeHint() const {
    constexpr int Columns = 6;
    constexpr int Rows = 10;
    return {m_layout.columns.DefaultSize() * Columns, m_layout.rows.DefaultSize() * Rows};
}

// ---- Looks and geometry

void CGridCtrl::SetBackgroundColour(const QColor& colour) {
    m_background = colour;
    RedrawAll();
}

QColor CGridCtrl::GetBackgroundColour() const {
    return m_background.isValid() ? m_background : palette().color(QPalette::Base);
}

QColor CGridCtrl::GetFixedBackgroundColour() const {
    return palette().color(QPalette::Button);
}

QColor CGridCtrl::GetGridLineColour() const {
    return {0xC0, 0xC0, 0xC0};
}

QColor CGridCtrl::GetShadowColour() const {
    return palette().color(QPalette::Dark);
}

QFont CGridCtrl::FontOf(const CGridCellBase& cell) const {
    return cell.GetFont().value_or(font());
}

void CGridCtrl::Refresh() {
    SyncScrollBars();
    RedrawAll();
}

void CGridCtrl::RedrawAll() {
    if (!m_isRedrawDue) {
        m_isRedrawDue = true;
        viewport()->update();
    }
}

void CGridCtrl::RedrawCell(int row, int column) {
    if (m_isRedrawDue) {
        return;
    }
    const QRect rect = CellRect(row, column) & viewport()->rect();
    if (!rect.isEmpty()) {
        viewport()->update(rect);
    }
}

QRect CGridCtrl::CellRect(int row, int column) const {
    return m_layout.Holds(CCellID{row, column}) ? m_layout.BlockRect(MergeExtent(row, column)) : QRect();
}

CCellID CGridCtrl::CellAt(const QPoint& position) const {
    const CCellID cell = m_layout.CellAt(position);
    return cell.IsValid() ? MergeOrigin(cell.row, cell.col) : cell;
}

void CGridCtrl::EnsureVisible(int row, int column) {
    if (!m_layout.Holds(CCellID{row, column})) {
        return;
    }
    SyncScrollBars();
    const CCellRange block = MergeExtent(row, column);
    verticalScrollBar()->setValue(m_layout.rows.ScrollToShow(block.minRow, block.maxRow));
    horizontalScrollBar()->setValue(m_layout.columns.ScrollToShow(block.minCol, block.maxCol));
}

void CGridCtrl::TraceCellPosition(int row, int column) const {
    const QRect rect = CellRect(row, column);
    const int number = row * GetColumnCount() + column;
    qDebug().noquote() << QString::asprintf("\n第%d个单元格位置：left=%d，right=%d", number, rect.left(),
                                            rect.left() + rect.width());
}

// ---- Painting

void CGridCtrl::paintEvent(QPaintEvent* event) {
    m_isRedrawDue = false;
    QPainter painter(viewport());
    GridPainter(*this, painter).Paint(event->rect());
}

void CGridCtrl::ShowTip(const QPoint& position, const QPoint& globalPosition) {
    const CCellID id = CellAt(position);
    const CGridCellBase* cell = m_cells.At(id.row, id.col);
    const QRect rect = CellRect(id.row, id.col);
    const bool shows =
        cell != nullptr && !cell->GetTipText().isEmpty() &&
        !CellTextFits(FontOf(*cell), cell->TextRect(rect.adjusted(0, 0, -1, -1), FontOf(*cell)).size(),
                      cell->GetTipText(), cell->GetFormat());
    if (!shows) {
        QToolTip::hideText();
        return;
    }
    constexpr qsizetype MostCharacters = 2000;
    // Escaped, so that a text that looks like markup is shown as it was typed.
    const CString text = cell->GetTipText().left(MostCharacters).toHtmlEscaped();
    QToolTip::showText(globalPosition, QStringLiteral("<div style='white-space:pre-wrap'>%1</div>").arg(text),
                       viewport(), rect);
}

// ---- Keys and input methods

bool CGridCtrl::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        SyncScrollBars();
        m_edit->Refresh();
    }
    if (event->type() == QEvent::KeyPress) {
        // Tab reaches keyPressEvent only after it has moved the focus out of the grid.
        auto& key = static_cast<QKeyEvent&>(*event);
        const bool tab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
        if (tab && (key.modifiers() & Qt::ControlModifier) != 0) {
            const bool back = key.key() == Qt::Key_Backtab || (key.modifiers() & Qt::ShiftModifier) != 0;
            return focusNextPrevChild(!back);
        }
        if (tab && !IsEditing() && m_keys->Press(key)) {
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void CGridCtrl::keyPressEvent(QKeyEvent* event) {
    // Keys come here with an editor open only when the editor has no use for them.
    const QPointer<CGridCtrl> alive(this);
    const bool handled = !IsEditing() && m_keys->Press(*event);
    if (!alive.isNull()) {
        event->setAccepted(handled);
    }
}

void CGridCtrl::inputMethodEvent(QInputMethodEvent* event) {
    const bool types = !event->preeditString().isEmpty() || !event->commitString().isEmpty();
    const bool editable = EditingOf(GetFocusCell()) == CellEditing::Text;
    event->setAccepted(types && editable && !IsEditing() && BeginEditByTyping(*event));
}

QVariant CGridCtrl::inputMethodQuery(Qt::InputMethodQuery query) const {
    const CCellID focus = GetFocusCell();
    switch (query) {
        case Qt::ImEnabled:
            return EditingOf(focus) == CellEditing::Text;
        case Qt::ImCursorRectangle:
            return CellRect(focus.row, focus.col).translated(viewport()->pos());
        case Qt::ImFont:
            return font();
        default:
            return QAbstractScrollArea::inputMethodQuery(query);
    }
}

void CGridCtrl::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (byKey && !GetFocusCell().IsValid()) {
        m_keys->ShowFocus();
    }
    RedrawAll();
    m_announcer->FocusCame();
}

void CGridCtrl::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    RedrawAll();
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
    m_mouse->Press(*event);
}

void CGridCtrl::mouseMoveEvent(QMouseEvent* event) {
    m_mouse->Move(*event);
}

void CGridCtrl::mouseReleaseEvent(QMouseEvent* event) {
    m_mouse->Release(*event);
}

void CGridCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    m_mouse->DoubleClick(*event);
}

}  // namespace quorvane
