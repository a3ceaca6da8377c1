// The context menu of a grid: the grid's own commands and those that editors add.
#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <vector>

#include "grid/grid_types.h"
#include "grid/input/grid_command.h"

namespace quorvane {

class GridController;

class GridMenu : public QObject {
    Q_OBJECT

public:
    explicit GridMenu(GridController& controller);

    // Puts an action behind the others of its group and makes its key work while the grid has the keyboard.
    void Add(GridMenuGroup group, QAction* action);
    // Opens the menu at a point of the screen. Actions that do not apply are grey and tell why in their tips.
    void PopUp(const QPoint& globalPosition);

protected:
    // An open edit ends before the key of an action is obeyed.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        GridMenuGroup group;
        QPointer<QAction> action;
    };
    struct OwnAction {
        GridCommand::Kind kind;
        QAction* action;  // child of this object
    };

    void AddOwn(GridMenuGroup group, GridCommand::Kind kind, const CString& text, const QKeySequence& key);

    GridController& m_controller;
    std::vector<Entry> m_entries;  // by group
    std::vector<OwnAction> m_own;
    QPointer<QMenu> m_menu;  // once it has been opened
};

}  // namespace quorvane
