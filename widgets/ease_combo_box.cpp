#include "widgets/ease_combo_box.h"

#include <QWheelEvent>
#include <algorithm>

#include "widgets/chinese_order.h"

namespace quorvane {

CEaseComboBox::CEaseComboBox(bool sorted, QWidget* parent) : QComboBox(parent), m_sorted(sorted) {
    setMaxVisibleItems(16);
    connect(this, &QComboBox::activated, this, [this](int index) {
        if (index != m_selected) {
            m_selected = index;
            Q_EMIT SelectionChanged();
        }
    });
}

void CEaseComboBox::AddString(const QString& text) {
    int place = count();
    if (m_sorted) {
        const std::vector<QString> strings = Strings();
        place = static_cast<int>(std::upper_bound(strings.begin(), strings.end(), text, PinyinLess) -
                                 strings.begin());
    }
    const int selected = currentIndex();
    insertItem(place, text);
    // The base class selects the first entry that an empty list gets.
    m_selected = selected < 0 ? -1 : selected + (place <= selected ? 1 : 0);
    setCurrentIndex(m_selected);
}

bool CEaseComboBox::Holds(const QString& text) const {
    const std::vector<QString> strings = Strings();
    return std::find(strings.begin(), strings.end(), text) != strings.end();
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
    const std::vector<QString> strings = Strings();
    const auto found = std::find(strings.begin(), strings.end(), text);
    m_selected = found == strings.end() ? -1 : static_cast<int>(found - strings.begin());
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
