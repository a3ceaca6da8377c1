#include "editors/luminaire/type_chooser.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QMouseEvent>
#include <QScreen>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "model/light_source_categories.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kBorder = 1;    // pixels, the frame on each side
constexpr int kTextRoom = 8;  // pixels beside a text on each side

// Ticks and unticks by a click anywhere on the row, or by Space.
class TickDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& /*option*/,
                     const QModelIndex& index) override {
        if (!IsToggle(event)) {
            return false;
        }
        const bool ticked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return model->setData(index, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }

private:
    static bool IsToggle(QEvent* event) {
        if (event->type() == QEvent::MouseButtonRelease) {
            return static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
        }
        return event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
    }
};

// The list stands below the cell, or above it when it only fits there. When it fits nowhere it stands on the
// side with more room.
QRect PlaceBeside(const QRect& cell, QSize size, const QRect& screen) {
    const int roomBelow = screen.bottom() - cell.bottom();
    const int roomAbove = cell.top() - screen.top();
    const bool below = size.height() <= roomBelow || roomBelow >= roomAbove;
    size = {std::min(size.width(), screen.width()),
            std::min(size.height(), std::max(below ? roomBelow : roomAbove, 1))};
    const int left = std::clamp(cell.left(), screen.left(), screen.right() + 1 - size.width());
    return {QPoint(left, below ? cell.bottom() + 1 : cell.top() - size.height()), size};
}

}  // namespace

CLamphouseTypeChoiceWindow::CLamphouseTypeChoiceWindow(QWidget* owner)
    : QFrame(owner, Qt::Popup | Qt::FramelessWindowHint), m_list(new QListWidget(this)) {
    setObjectName(u"typeChooser"_s);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(kBorder);
    m_list->setObjectName(u"control1003"_s);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setUniformItemSizes(true);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setItemDelegate(new TickDelegate(m_list));
    m_list->installEventFilter(this);
    connect(m_list, &QListWidget::itemChanged, this, &CLamphouseTypeChoiceWindow::ApplyTickRules);
}

void CLamphouseTypeChoiceWindow::SetTypeNames(std::vector<CString> typeNames) {
    m_typeNames = std::move(typeNames);
}

void CLamphouseTypeChoiceWindow::Show(const QRect& cell, const std::vector<CString>& namesToTick) {
    hide();
    m_cell = cell;
    FillList(namesToTick);
    const QScreen* screen = QGuiApplication::screenAt(cell.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    setGeometry(PlaceBeside(cell, WantedSize(cell.width()), screen->availableGeometry()));
    m_list->setGeometry(rect().adjusted(kBorder, kBorder, -kBorder, -kBorder));
    // A second click on the cell closes the list like that of a combo box; the press must not open it anew.
    setAttribute(Qt::WA_NoMouseReplay, false);
    m_report = true;
    show();
    m_list->setFocus(Qt::PopupFocusReason);
    m_list->scrollToItem(m_list->currentItem());
}

void CLamphouseTypeChoiceWindow::FillList(const std::vector<CString>& namesToTick) {
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    int firstTicked = -1;
    for (const CString& name : m_typeNames) {
        const bool ticked = std::find(namesToTick.begin(), namesToTick.end(), name) != namesToTick.end();
        auto* item = new QListWidgetItem(name, m_list);
        item->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
        if (ticked && firstTicked < 0) {
            firstTicked = m_list->row(item);
        }
    }
    m_list->setCurrentRow(std::max(firstTicked, 0));
}

QSize CLamphouseTypeChoiceWindow::WantedSize(int leastWidth) const {
    int widestText = 0;
    int height = 0;
    for (int row = 0; row < m_list->count(); ++row) {
        widestText = std::max(widestText, m_list->fontMetrics().horizontalAdvance(m_list->item(row)->text()));
        height += m_list->sizeHintForRow(row);
    }
    // The tick box may need more room than the margins leave it.
    const int listWidth =
        std::max(widestText + 2 * kTextRoom, m_list->count() > 0 ? m_list->sizeHintForColumn(0) : 0);
    const bool empty = m_list->count() == 0;
    return {std::max(empty ? 0 : listWidth + 2 * kBorder, leastWidth), height + 2 * kBorder};
}

// Mixed light stands for a luminaire's only type, beside which just "common luminaires" makes sense.
void CLamphouseTypeChoiceWindow::ApplyTickRules(const QListWidgetItem* toggled) {
    if (toggled->checkState() != Qt::Checked || toggled->text() == kCommonLuminaires) {
        return;
    }
    const bool mixedLight = toggled->text() == kMixedLight;
    const QSignalBlocker quiet(m_list);
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        const bool excluded = mixedLight ? item->text() != kCommonLuminaires : item->text() == kMixedLight;
        if (item != toggled && excluded) {
            item->setCheckState(Qt::Unchecked);
        }
    }
}

std::vector<CString> CLamphouseTypeChoiceWindow::TickedNames() const {
    std::vector<CString> names;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->checkState() == Qt::Checked) {
            names.push_back(m_list->item(row)->text());
        }
    }
    return names;
}

bool CLamphouseTypeChoiceWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && HandleKey(static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    // The list is all that can have the focus in here; another popup only borrows it.
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
        hide();
    }
    return QFrame::eventFilter(watched, event);
}

// True when the key closes the window.
bool CLamphouseTypeChoiceWindow::HandleKey(int key) {
    switch (key) {
        case Qt::Key_Escape:
            m_report = false;
            break;
        case Qt::Key_Enter:
        case Qt::Key_Return:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            break;
        default:
            return false;
    }
    hide();
    return true;
}

void CLamphouseTypeChoiceWindow::mousePressEvent(QMouseEvent* event) {
    if (m_cell.contains(event->globalPosition().toPoint())) {
        setAttribute(Qt::WA_NoMouseReplay);
    }
    QFrame::mousePressEvent(event);
}

void CLamphouseTypeChoiceWindow::hideEvent(QHideEvent* event) {
    QFrame::hideEvent(event);
    // Once a showing, whatever ended it: a press outside, a key or another window.
    if (std::exchange(m_report, false)) {
        Q_EMIT Chosen(TickedNames(), geometry());
    }
}

}  // namespace quorvane
