#include "grid/input/combo_list.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

ComboList::ComboList(const std::vector<CString>& choices, const CString& current, QWidget* parent)
    : QListWidget(parent) {
    setWindowFlag(Qt::Popup);
    setObjectName(u"gridComboList"_s);
    // The click that closes the list must not reach what lies below it and open the list again.
    setAttribute(Qt::WA_NoMouseReplay);
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::Box);
    setLineWidth(1);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    connect(this, &QListWidget::itemEntered, this, [this](QListWidgetItem* item) { setCurrentItem(item); });
    int currentRow = -1;
    for (const CString& choice : choices) {
        addItem(choice);
        if (choice == current && currentRow < 0) {
            currentRow = count() - 1;
        }
    }
    setCurrentRow(currentRow);
}

void ComboList::DropFrom(const QRect& cell) {
    constexpr int kMostLines = 12;
    const int frame = 2 * frameWidth();
    const int lines = std::clamp(count(), 1, kMostLines);
    const int line = std::max(sizeHintForRow(0), fontMetrics().height());
    const int scrollBar = count() > kMostLines ? verticalScrollBar()->sizeHint().width() : 0;
    const QRect desktop =
        (parentWidget() != nullptr ? parentWidget()->screen() : screen())->availableGeometry();

    QSize size(std::max(cell.width(), sizeHintForColumn(0) + scrollBar + frame), lines * line + frame);
    size = size.boundedTo(desktop.size());
    QPoint place(cell.left(), cell.bottom() + 1);
    if (place.y() + size.height() > desktop.bottom() + 1) {
        place.setY(std::max(desktop.top(), cell.top() - size.height()));
    }
    place.setX(
        std::clamp(place.x(), desktop.left(), std::max(desktop.left(), desktop.right() + 1 - size.width())));
    setGeometry(QRect(place, size));
    show();
    setFocus();
    if (currentItem() != nullptr) {
        scrollToItem(currentItem());
    }
}

void ComboList::Choose(const QListWidgetItem* item) {
    if (item != nullptr) {
        const CString text = item->text();
        close();
        Q_EMIT Chosen(text);
    }
}

bool ComboList::event(QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress &&
        !rect().contains(static_cast<const QMouseEvent&>(*event).position().toPoint())) {
        close();
        return true;
    }
    return QListWidget::event(event);
}

void ComboList::focusInEvent(QFocusEvent* event) {
    // The view would make its first line current, and Enter would choose it over a text that is no choice.
    const int row = currentRow();
    QListWidget::focusInEvent(event);
    setCurrentRow(row);
}

void ComboList::keyPressEvent(QKeyEvent* event) {
    const bool alt = (event->modifiers() & Qt::AltModifier) != 0;
    switch (event->key()) {
        case Qt::Key_Escape:
            close();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Choose(currentItem());
            return;
        case Qt::Key_F4:
            close();
            return;
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (alt) {
                close();
                return;
            }
            break;
        default:
            break;
    }
    QListWidget::keyPressEvent(event);
}

void ComboList::mouseReleaseEvent(QMouseEvent* event) {
    QListWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton) {
        Choose(itemAt(event->position().toPoint()));
    }
}

}  // namespace quorvane
