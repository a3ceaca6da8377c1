// CLamphouseTypeChoiceWindow: a list that drops down under a cell and lets the user tick light source types.
#pragma once

#include <QFrame>
#include <vector>

#include "data/records.h"

class QListWidget;
class QListWidgetItem;

namespace quorvane {

class CLamphouseTypeChoiceWindow : public QFrame {
    Q_OBJECT

public:
    explicit CLamphouseTypeChoiceWindow(QWidget* owner);

    // The names to offer from the next showing on, in this order.
    void SetTypeNames(std::vector<CString> typeNames);

    // Drops down under cell, a rectangle in screen coordinates, with the names ticked that stand in
    // namesToTick. At least as wide as the cell; above it where the screen ends below.
    void Show(const QRect& cell, const std::vector<CString>& namesToTick);

Q_SIGNALS:
    // Closed by losing the focus, Enter or Tab: the ticked names in list order, and where the window was on
    // the screen. Sent even when nothing changed, but not after Esc, which gives the choice up.
    void Chosen(const std::vector<CString>& names, const QRect& rectangle);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void FillList(const std::vector<CString>& namesToTick);
    QSize WantedSize(int leastWidth) const;
    void ApplyTickRules(const QListWidgetItem* toggled);
    std::vector<CString> TickedNames() const;
    bool HandleKey(int key);

    std::vector<CString> m_typeNames;
    QListWidget* m_list;
    QRect m_cell;           // the cell of this showing, in screen coordinates
    bool m_report = false;  // whether hiding reports the ticked names
};

}  // namespace quorvane
