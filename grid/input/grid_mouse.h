// What the mouse does in a grid: selecting, pressing buttons in cells, opening edits, dragging column edges.
#pragma once

#include <QMouseEvent>
#include <QObject>
#include <QTimer>
#include <optional>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;

class GridMouse : public QObject {
    Q_OBJECT

public:
    static constexpr int SmallestColumn = 8;  // pixels a column keeps when its edge is dragged

    explicit GridMouse(CGridCtrl& grid);

    // Positions are in window coordinates. The grid may be gone when one of these returns.
    void Press(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void Release(const QMouseEvent& event);
    void DoubleClick(const QMouseEvent& event);
    // Forgets what was pressed: the mouse was taken away or the cells have changed.
    void Reset();

    // The cell button that is held down with the mouse on it, and its cell.
    CCellID PressedCell() const { return m_action == Action::Button && m_isInside ? m_pressed : CCellID{}; }
    int PressedButton() const { return m_button; }

private:
    enum class Action { None, Cells, Rows, Columns, Button, ColumnEdge };

    void PressLeft(const QMouseEvent& event, const QPoint& position);
    void PressHeading(CCellID cell, Qt::KeyboardModifiers modifiers);
    void PressCell(CCellID cell, const QMouseEvent& event);
    void SelectLines(CCellID cell, Qt::KeyboardModifiers modifiers);
    void DragTo(const QPoint& position);
    void ScrollOn();
    void DragEdge(int x);
    void Click(CCellID cell);
    // The column whose right edge, in a heading, is at a position; none elsewhere.
    std::optional<int> EdgeAt(const QPoint& position) const;
    CCellID OriginAt(const QPoint& position) const;

    CGridCtrl& m_grid;
    Action m_action = Action::None;
    CCellID m_pressed;
    int m_button = -1;
    bool m_isInside = false;   // the mouse is over the pressed button
    bool m_hadFocus = false;   // the pressed cell had the focus before
    bool m_clickDone = false;  // the second press of a double click is no second click
    int m_edgeColumn = -1;
    int m_edgeOffset = 0;  // from the mouse to the edge it holds
    QPoint m_last;
    QTimer m_scrollTimer;
};

}  // namespace quorvane
