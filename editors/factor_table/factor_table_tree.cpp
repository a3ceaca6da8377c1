#include "editors/factor_table/factor_table_tree.h"

#include <QScopedValueRollback>
#include <QScrollBar>
#include <memory>

#include "model/records/index_after_change.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

using Command = FactorTableTree::Command;

constexpr int kIndexRole = Qt::UserRole;
constexpr Qt::ItemFlags kRootFlags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
constexpr Qt::ItemFlags kChildFlags = kRootFlags | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;

struct MenuEntry {
    Command command;
    const char16_t* text;
};

constexpr MenuEntry kCavityRatioMenu[] = {
    {Command::NewHeading, u"新建列表头"},
    {Command::DeleteHeading, u"删除列表头"},
    {Command::NewRow, u"新建室空间比RCR"},
    {Command::DeleteRow, u"删除空间比RCR"},
};
constexpr MenuEntry kRoomIndexMenu[] = {
    {Command::NewHeading, u"新建列表头"},
    {Command::DeleteHeading, u"删除列表头"},
    {Command::NewRow, u"新建室形系数RI"},
    {Command::DeleteRow, u"删除室形系数RI"},
};

QTreeWidgetItem* NewChild(const CString& label, int index) {
    auto item = std::make_unique<QTreeWidgetItem>(QStringList(label));
    item->setFlags(kChildFlags);
    item->setData(0, kIndexRole, index);
    return item.release();
}

}  // namespace

FactorTableTree::FactorTableTree(const CString& rowLabel, QWidget* parent)
    : LabelEditTree(parent), m_rowLabel(rowLabel) {
    setUniformRowHeights(true);
    for (const CString& label : {u"列表头"_s, rowLabel}) {
        auto* root = new QTreeWidgetItem(this, {label});
        root->setFlags(kRootFlags);
    }
    setCurrentItem(Root(Branch::Headings));
    connect(this, &QTreeWidget::currentItemChanged, this, &FactorTableTree::OnCurrentChanged);
    connect(this, &LabelEditTree::MenuRequested, this, &FactorTableTree::OpenMenu);
}

FactorTableTree::Branch FactorTableTree::BranchOf(const QTreeWidgetItem* item) const {
    return item->parent() == Root(Branch::Headings) ? Branch::Headings : Branch::Rows;
}

int FactorTableTree::IndexOf(const QTreeWidgetItem* item) {
    return item->data(0, kIndexRole).toInt();
}

void FactorTableTree::OnCurrentChanged(const QTreeWidgetItem* item) {
    if (!m_isFilling && item != nullptr && item->parent() != nullptr && IndexOf(item) >= 0) {
        Q_EMIT EntryChosen(BranchOf(item), IndexOf(item));
    }
}

void FactorTableTree::Show(const FactorTableEditing& editing) {
    const QScopedValueRollback filling(m_isFilling, true);
    const Entry current = AfterChange(CurrentEntry(), editing.Table());
    const int scroll = verticalScrollBar()->value();
    m_headings = editing.Table().Headings();
    m_rowValues = editing.Table().RowValues();
    SetChildren(Branch::Headings, editing);
    SetChildren(Branch::Rows, editing);
    MakeCurrent(current);
    doItemsLayout();
    verticalScrollBar()->setValue(scroll);
}

// The roots stay, so that they can stay expanded.
void FactorTableTree::SetChildren(Branch branch, const FactorTableEditing& editing) {
    QTreeWidgetItem* root = Root(branch);
    const bool isExpanded = root->isExpanded();
    qDeleteAll(root->takeChildren());
    QList<QTreeWidgetItem*> children;
    for (int index = 0; index < editing.Count(branch); ++index) {
        children += NewChild(editing.Label(branch, index), index);
    }
    root->addChildren(children);
    root->setExpanded(isExpanded);
}

FactorTableTree::Entry FactorTableTree::CurrentEntry() const {
    const QTreeWidgetItem* item = currentItem();
    if (item == nullptr || item == Root(Branch::Headings)) {
        return {Branch::Headings, true, -1};
    }
    if (item == Root(Branch::Rows)) {
        return {Branch::Rows, true, -1};
    }
    return {BranchOf(item), false, IndexOf(item)};
}

FactorTableTree::Entry FactorTableTree::AfterChange(const Entry& entry,
                                                    const UtilizationFactorTable& table) const {
    Entry after = entry;
    if (!entry.isRoot) {
        after.index = entry.branch == Branch::Headings
                          ? IndexAfterChange(entry.index, m_headings, table.Headings())
                          : IndexAfterChange(entry.index, m_rowValues, table.RowValues());
    }
    return after;
}

void FactorTableTree::MakeCurrent(const Entry& entry) {
    QTreeWidgetItem* root = Root(entry.branch);
    setCurrentItem(entry.index < 0 ? root : root->child(entry.index));
}

void FactorTableTree::AddNew(Branch branch) {
    QTreeWidgetItem* item = NewChild(branch == Branch::Headings ? u"0,0,0"_s : u"0"_s, -1);
    Root(branch)->addChild(item);
    ExpandBranch(branch);
    EditLabel(item);
}

bool FactorTableTree::IsEnabled(Command command, const QTreeWidgetItem* item) const {
    const QTreeWidgetItem* headings = Root(Branch::Headings);
    const QTreeWidgetItem* rows = Root(Branch::Rows);
    switch (command) {
        case Command::NewHeading:
            return item == headings;
        case Command::NewRow:
            return item == rows;
        case Command::DeleteHeading:
            return item != nullptr && item->parent() == headings;
        case Command::DeleteRow:
            return item != nullptr && item->parent() == rows;
    }
    return false;
}

void FactorTableTree::OpenMenu(QTreeWidgetItem* item, const QPoint& globalPosition) {
    if (m_menu != nullptr) {
        m_menu->close();
    }
    m_menu = new QMenu(this);
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
    m_menu->setObjectName(u"factorTableMenu"_s);
    const bool byRoomIndex = m_rowLabel == u"室形系数RI"_s;
    for (const MenuEntry& entry : byRoomIndex ? kRoomIndexMenu : kCavityRatioMenu) {
        QAction* action = m_menu->addAction(CString::fromUtf16(entry.text));
        action->setEnabled(IsEnabled(entry.command, item));
        // Queued, so that the menu is closed before a message or an editor opens.
        connect(
            action, &QAction::triggered, this,
            [this, command = entry.command] { Q_EMIT CommandChosen(command); }, Qt::QueuedConnection);
    }
    m_menu->popup(globalPosition);
}

}  // namespace quorvane
