// UndoActions: 撤销 and 恢复 in the context menu of a grid, with their keys.
#pragma once

#include <functional>

#include "data/records.h"

class QAction;

namespace quorvane {

class CGridCtrl;

// Whatever can be undone. A name is that of the next step, or null when there is none.
struct UndoTarget {
    std::function<const CString*()> undoName;
    std::function<const CString*()> redoName;
    std::function<void()> undo;
    std::function<void()> redo;
};

class UndoActions {
public:
    // Adds the actions to the menu. Their keys work in the whole window while the grid shows: after a press
    // of a button the button has the keyboard.
    void Add(CGridCtrl& grid, UndoTarget target);
    // To be called when the steps have changed.
    void Update();
    // Why nothing can be undone, until something can.
    void SetReason(const CString& reason);

private:
    UndoTarget m_target;
    CString m_reason;
    QAction* m_undo = nullptr;  // both children of the grid
    QAction* m_redo = nullptr;
};

}  // namespace quorvane
