// What the keys do in a grid: moving the focus, extending the selection, starting edits, pressing buttons.
#pragma once

#include <QKeyEvent>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;

class GridKeys {
public:
    enum class Move { Up, Down, Left, Right, NextEditable, PreviousEditable };

    explicit GridKeys(CGridCtrl& grid) : m_grid(grid) {}

    // False when the key means nothing here and is to be passed on.
    bool Press(const QKeyEvent& event);
    // The cell that a step leads to; none when there is no further one. Merged blocks count as one cell;
    // hidden rows and columns and fixed cells are stepped over.
    CCellID Step(CCellID from, Move move) const;
    CCellID NextColumn(CCellID from, Move move) const;
    // Gives a grid without a focus cell one, the first in view, and selects nothing.
    void ShowFocus();
    // After an edit in `edited` has ended: moves the focus on and, where the next cell is one of plain
    // editable text, opens it for typing.
    void GoOnEditing(CCellID edited, Move move);

private:
    bool PressWithFocus(const QKeyEvent& event, CCellID focus);
    bool MoveByKey(const QKeyEvent& event, CCellID focus);
    bool PressTab(const QKeyEvent& event, CCellID focus);
    bool TypeInto(const QKeyEvent& event, CCellID focus);
    bool OpenChoices(CCellID focus);
    bool PressSpace(const QKeyEvent& event, CCellID focus);
    bool ClearText(CCellID focus);
    CCellID KeyTarget(const QKeyEvent& event, CCellID focus) const;
    CCellID PageTarget(CCellID focus, int direction) const;
    CCellID FirstVisible() const;
    CCellID FirstCell() const;
    CCellID LastCell() const;
    CCellID NextEditable(CCellID from, int direction) const;

    CGridCtrl& m_grid;
};

}  // namespace quorvane
