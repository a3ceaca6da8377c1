#include "widgets/ease_combo_box.h"

#include <QWheelEvent>
#include <algorithm>
#include <ranges>

#include "widgets/chinese_order.h"

namespace quorvane {

CEaseComboBox::CEaseComboBox(bool sorted, QWidget* parent) : QComboBox(parent), m_sorted(sorted) {
    setMaxVisibleItems(16);
    connect(this, &QComboBox::activated, this, [this](int index) {
        m_selected = index;
        Q_EMIT SelectionChanged();
    });
}

void CEaseComboBox::AddString(const QString& text) {
    const int place = m_sorted ? PlaceOf(text) : count();
    const int selected = currentIndex();
    insertItem(place, text);
    // The base class selects the first entry that an empty list gets.
    m_selected = selected < 0 ? -1 : selected + (place <= selected ? 1 : 0);
    setCurrentIndex(m_selected);
}

// Where a sorted list takes a text: behind the last entry that is not greater. Asks for as few entries as
// possible, because a list may be filled with thousands one by one.
int CEaseComboBox::PlaceOf(const QString& text) const {
    const auto entries = std::views::iota(0, count());
    return *std::ranges::upper_bound(entries, text, PinyinLess,
                                     [this](int index) { return itemText(index); });
}

bool CEaseComboBox::Holds(const QString& text) const {
    return findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive) >= 0;
}

std::vector<QString> CEaseComboBox::Strings() const {
    std::vector<QString> strings;
    strings.reserve(static_cast<size_t>(count()));
    for (int index = 0; index < count(); ++index) {
        strings.push_back(itemText(index));
    }
    return strings;
}

void CEaseComboBox::SelectString(const QString& text) {
    m_selected = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    setCurrentIndex(m_selected);
}

void CEaseComboBox::ClearSelection() {
    m_selected = -1;
    setCurrentIndex(-1);
}

void CEaseComboBox::showPopup() {
    Q_EMIT DropDown();
    QComboBox::showPopup();
}

void CEaseComboBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace quorvane
