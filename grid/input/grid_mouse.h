// What the mouse means in a grid: selecting, pressing buttons in cells, opening edits, dragging column edges.
#pragma once

#include <QMouseEvent>
#include <optional>

#include "grid/input/grid_command.h"

namespace quorvane {

class GridCore;

// Remembers what was pressed until it is released. Positions are pixels of the grid's window.
class GridMouse {
public:
    static constexpr int kSmallestColumn = 8;  // pixels a column keeps when its edge is dragged

    explicit GridMouse(const GridCore& core) : m_core(core) {}

    GridCommand Press(const QMouseEvent& event);
    // With the left button down.
    GridCommand Drag(const QPoint& position);
    GridCommand Release(const QMouseEvent& event);
    // After Press of the same event: opens an edit where a cell of text was pressed.
    GridCommand DoubleClick(const QMouseEvent& event);
    // Forgets what was pressed: the mouse was taken away or the cells have changed.
    void Reset();

    // The cell button that is held down with the mouse on it, and its cell.
    CCellID PressedCell() const { return m_action == Action::Button && m_isInside ? m_pressed : CCellID{}; }
    int PressedButton() const { return m_button; }
    // Whether the click that was just released drops down the list of its cell.
    bool OpensChoices() const { return m_opensChoices; }
    // Where the block that is being dragged would go; not valid when none is dragged.
    CCellRange DropRange() const;
    // Whether a position is on the frame of the selected block, by which it can be dragged.
    bool IsOnFrame(const QPoint& position) const;
    // How many pixels a selecting drag has gone beyond the area in which cells scroll.
    QPoint Overshoot() const;
    QPoint LastPosition() const { return m_last; }
    // The column whose right edge is at a position in a heading.
    std::optional<int> EdgeAt(const QPoint& position) const;

private:
    enum class Action { None, Cells, Rows, Columns, Button, ColumnEdge, Block };

    GridCommand PressLeft(const QMouseEvent& event);
    GridCommand PressHeading(CCellID cell, Qt::KeyboardModifiers modifiers);
    GridCommand PressCell(CCellID cell, const QMouseEvent& event);
    GridCommand PressFrame(CCellID cell);
    GridCommand DragSelection() const;
    GridCommand DragBlock();
    // The cell without headings that is nearest to the mouse; none in an empty grid.
    CCellID NearestCell() const;
    // Whether pressing a cell selects whole rows or columns, and which.
    bool IsHead(CCellID cell) const;
    CCellRange LinesOf(CCellID head) const;
    int ButtonAt(CCellID cell, const QPoint& position) const;

    const GridCore& m_core;
    Action m_action = Action::None;
    CCellID m_pressed;
    int m_button = -1;
    bool m_isInside = false;      // the mouse is over the pressed button
    bool m_hadFocus = false;      // the pressed cell had the focus before
    bool m_clickDone = false;     // the second press of a double click is no second click
    bool m_opensChoices = false;  // see OpensChoices
    CCellRange m_block;           // that is dragged by its frame
    CCellID m_grip;               // the cell of the block that the mouse holds
    QPoint m_grippedAt;
    CCellID m_drop;  // where its first cell would go; none before it is moved
    int m_edgeColumn = -1;
    int m_edgeOffset = 0;  // from the mouse to the edge it holds
    QPoint m_last;
};

}  // namespace quorvane
