#include "editors/view/grey_commands.h"

#include <QAction>

#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

void AddGrey(CGridCtrl& grid, GridMenuGroup group, const CString& text, const QKeySequence& key,
             const CString& reason) {
    auto* action = new QAction(text, &grid);
    action->setShortcut(key);
    action->setToolTip(reason);
    action->setEnabled(false);
    grid.AddMenuAction(group, action);
}

}  // namespace

void AddGreyFinding(CGridCtrl& grid, const CString& reason) {
    AddGrey(grid, GridMenuGroup::Find, u"查找…"_s, QKeySequence::Find, reason);
}

void AddGreyReplacing(CGridCtrl& grid, const CString& reason) {
    AddGrey(grid, GridMenuGroup::Find, u"替换…"_s, Qt::CTRL | Qt::Key_H, reason);
}

void AddGreyArranging(CGridCtrl& grid, const CString& reason) {
    AddGrey(grid, GridMenuGroup::Order, u"升序"_s, {}, reason);
    AddGrey(grid, GridMenuGroup::Order, u"降序"_s, {}, reason);
    AddGrey(grid, GridMenuGroup::Order, u"筛选…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_L, reason);
}

}  // namespace quorvane
