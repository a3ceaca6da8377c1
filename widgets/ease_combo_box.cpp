#include "widgets/ease_combo_box.h"

#include <QWheelEvent>
#include <utility>

namespace quorvane {

CEaseComboBox::CEaseComboBox(QWidget* parent) : QComboBox(parent) {
    setMaxVisibleItems(16);
    connect(this, &QComboBox::activated, this, &CEaseComboBox::TakeChoice);
}

void CEaseComboBox::AddString(const QString& text) {
    const int place = m_less ? PlaceOf(text) : count();
    const int selected = currentIndex();
    insertItem(place, text);
    // The base class selects the first entry that an empty list gets.
    setCurrentIndex(selected < 0 ? -1 : selected + (place <= selected ? 1 : 0));
}

// Where a sorted list takes a text: behind the last entry that is not greater. Asks for as few entries as
// possible, because a list may be filled with thousands one by one.
int CEaseComboBox::PlaceOf(const QString& text) const {
    int first = 0;
    int end = count();
    while (first < end) {
        const int middle = first + (end - first) / 2;
        if (m_less(text, itemText(middle))) {
            end = middle;
        } else {
            first = middle + 1;
        }
    }
    return first;
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
    setCurrentIndex(findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

void CEaseComboBox::ClearSelection() {
    setCurrentIndex(-1);
}

void CEaseComboBox::showPopup() {
    Q_EMIT DropDown();
    m_isChoiceDue = true;
    QComboBox::showPopup();
}

void CEaseComboBox::keyPressEvent(QKeyEvent* event) {
    m_isInKeyPress = true;
    QComboBox::keyPressEvent(event);
    m_isInKeyPress = false;
}

void CEaseComboBox::TakeChoice() {
    if (std::exchange(m_isChoiceDue, false) || m_isInKeyPress) {
        Q_EMIT SelectionChanged();
    }
}

void CEaseComboBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace quorvane
