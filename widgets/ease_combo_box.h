// CEaseComboBox: a drop-down list of texts, in the order of insertion or sorted.
#pragma once

#include <QComboBox>
#include <functional>
#include <utility>
#include <vector>

namespace quorvane {

class CEaseComboBox : public QComboBox {
    Q_OBJECT

public:
    explicit CEaseComboBox(QWidget* parent);

    // Sorts what is added from now on. The order is a strict weak one.
    using TextLess = std::function<bool(const QString& left, const QString& right)>;
    void SetOrder(TextLess less) { m_less = std::move(less); }

    // Adds a text at its place (sorted) or at the end. The selection stays on the entry that it was on.
    void AddString(const QString& text);
    // Whether the list holds exactly this text.
    bool Holds(const QString& text) const;
    // The entries in list order.
    std::vector<QString> Strings() const;
    // Selects the entry with exactly this text, or none. Emits no SelectionChanged.
    void SelectString(const QString& text);
    void ClearSelection();

    void showPopup() override;

Q_SIGNALS:
    // The list is about to open.
    void DropDown();
    // The user chose an entry of the open list, or another one by a key.
    void SelectionChanged();

protected:
    // A wheel turned over a closed list scrolls nothing: it would change the filter unasked.
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int PlaceOf(const QString& text) const;
    // One opening of the list gives one choice. While a screen reader runs, the key that chooses an entry
    // reaches the list a second time, when the list has closed.
    void TakeChoice();

    TextLess m_less;  // none: the order of insertion
    bool m_isChoiceDue = false;
    bool m_isInKeyPress = false;
};

}  // namespace quorvane
