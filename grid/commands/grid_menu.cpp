#include "grid/commands/grid_menu.h"

#include <algorithm>

#include "grid/commands/grid_obstacle.h"
#include "grid/grid_controller.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

using Kind = GridCommand::Kind;

GridMenu::GridMenu(GridController& controller) : m_controller(controller) {
    AddOwn(GridMenuGroup::Clipboard, Kind::Cut, u"剪切"_s, QKeySequence::Cut);
    AddOwn(GridMenuGroup::Clipboard, Kind::Copy, u"复制"_s, QKeySequence::Copy);
    AddOwn(GridMenuGroup::Clipboard, Kind::Paste, u"粘贴"_s, QKeySequence::Paste);
    AddOwn(GridMenuGroup::Contents, Kind::ClearContents, u"清除内容"_s, Qt::Key_Delete);
    AddOwn(GridMenuGroup::Contents, Kind::FillDown, u"向下填充"_s, Qt::CTRL | Qt::Key_D);
    AddOwn(GridMenuGroup::Select, Kind::SelectRows, u"选中整行"_s, Qt::SHIFT | Qt::Key_Space);
    AddOwn(GridMenuGroup::Select, Kind::SelectColumns, u"选中整列"_s, Qt::CTRL | Qt::Key_Space);
    AddOwn(GridMenuGroup::Select, Kind::SelectAll, u"全选"_s, QKeySequence::SelectAll);
    AddOwn(GridMenuGroup::View, Kind::Freeze, {}, {});
}

void GridMenu::AddOwn(GridMenuGroup group, Kind kind, const CString& text, const QKeySequence& key) {
    // The key is only shown: the grid itself takes it, and an open editor has its own meaning for it.
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    action->setShortcutVisibleInContextMenu(true);
    connect(action, &QAction::triggered, this, [this, kind] {
        m_controller.Execute({kind, m_controller.Core().Focus()});
    });
    m_own.push_back({kind, action});
    m_entries.push_back({group, action});
}

void GridMenu::Add(GridMenuGroup group, QAction* action) {
    std::erase_if(m_entries, [](const Entry& entry) { return entry.action.isNull(); });
    if (action->associatedObjects().isEmpty()) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    action->setShortcutVisibleInContextMenu(true);
    action->installEventFilter(this);
    m_controller.Grid().addAction(action);
    const auto next =
        std::ranges::find_if(m_entries, [=](const Entry& entry) { return entry.group > group; });
    m_entries.insert(next, {group, action});
}

void GridMenu::PopUp(const QPoint& globalPosition) {
    for (const auto& [kind, action] : m_own) {
        const CString obstacle = ObstacleOf(m_controller.Core(), kind);
        action->setEnabled(obstacle.isEmpty());
        action->setToolTip(obstacle);
        if (kind == Kind::Freeze) {
            const bool isFrozen = m_controller.Core().Layout().columns.FrozenCount() > 0;
            action->setText(isFrozen ? u"取消冻结"_s : u"冻结到此列"_s);
        }
    }
    // Assistive technology takes an action for an entry of the first menu that it was in.
    if (m_menu == nullptr) {
        m_menu = new QMenu(&m_controller.Grid());
        m_menu->setObjectName(u"gridMenu"_s);
        m_menu->setToolTipsVisible(true);
    }
    m_menu->clear();
    std::optional<GridMenuGroup> last;
    for (const Entry& entry : m_entries) {
        if (entry.action != nullptr && entry.action->isVisible()) {
            if (last && *last != entry.group) {
                m_menu->addSeparator();
            }
            m_menu->addAction(entry.action);
            last = entry.group;
        }
    }
    m_menu->popup(globalPosition);
}

bool GridMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Shortcut) {
        return false;
    }
    // Whoever is told of the edit may take the action away.
    const QPointer<QObject> action(watched);
    m_controller.EndEdit();
    return action.isNull();
}

}  // namespace quorvane
