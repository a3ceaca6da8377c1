#include "editors/undo_actions.h"

#include <QAction>
#include <utility>

#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

QAction* AddAction(CGridCtrl& grid, const QList<QKeySequence>& keys, const std::function<void()>& run) {
    auto* action = new QAction(&grid);
    action->setShortcuts(keys);
    QObject::connect(action, &QAction::triggered, &grid, run);
    grid.AddMenuAction(GridMenuGroup::Undo, action);
    action->setShortcutContext(Qt::WindowShortcut);
    return action;
}

void Show(QAction& action, const CString& command, const CString* step, const CString& reason) {
    action.setEnabled(step != nullptr);
    action.setText(step == nullptr || step->isEmpty() ? command : command + u' ' + *step);
    action.setToolTip(step == nullptr ? reason : CString());
}

}  // namespace

void UndoActions::Add(CGridCtrl& grid, UndoTarget target) {
    m_target = std::move(target);
    // An edit that the key has ended may have changed what there is to be done.
    m_undo = AddAction(grid, {Qt::CTRL | Qt::Key_Z}, [this] {
        if (m_target.undoName() != nullptr) {
            m_target.undo();
        }
    });
    m_redo = AddAction(grid, {Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z}, [this] {
        if (m_target.redoName() != nullptr) {
            m_target.redo();
        }
    });
    Update();
}

void UndoActions::Update() {
    if (m_undo == nullptr) {
        return;
    }
    const CString* undo = m_target.undoName();
    if (undo != nullptr) {
        m_reason.clear();
    }
    Show(*m_undo, u"撤销"_s, undo, m_reason.isEmpty() ? u"没有可以撤销的操作"_s : m_reason);
    Show(*m_redo, u"恢复"_s, m_target.redoName(), u"没有可以恢复的操作"_s);
}

void UndoActions::SetReason(const CString& reason) {
    m_reason = reason;
    Update();
}

}  // namespace quorvane
