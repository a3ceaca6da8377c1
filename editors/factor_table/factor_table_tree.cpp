#include "editors/factor_table/factor_table_tree.h"

#include <QScrollBar>
#include <algorithm>
#include <iterator>
#include <memory>

#include "data/number_text.h"
#include "data/text_format.h"
#include "editors/factor_table/moved_place.h"

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

CString HeadingText(const tagColHeading& heading) {
    return FormatText(u"%d,%d,%d", {heading.Pcc, heading.Pw, heading.Pf});
}

FactorTableTree::FactorTableTree(const CString& rowLabel, QWidget* parent)
    : LabelEditTree(parent), m_rowLabel(rowLabel) {
    setUniformRowHeights(true);
    for (const CString& label : {QStringLiteral("列表头"), rowLabel}) {
        auto* root = new QTreeWidgetItem(this, {label});
        root->setFlags(kRootFlags);
    }
    setCurrentItem(Root(Branch::Headings));
    connect(this, &LabelEditTree::MenuRequested, this, &FactorTableTree::OpenMenu);
}

FactorTableTree::Branch FactorTableTree::BranchOf(const QTreeWidgetItem* item) const {
    return item->parent() == Root(Branch::Headings) ? Branch::Headings : Branch::Rows;
}

int FactorTableTree::IndexOf(const QTreeWidgetItem* item) {
    return item->data(0, kIndexRole).toInt();
}

void FactorTableTree::Show(const UtilizationFactorTable& table) {
    const Key current = Moved(CurrentKey(), table);
    const int scroll = verticalScrollBar()->value();
    m_headings = table.Headings();
    m_rowValues = table.RowValues();
    std::vector<CString> labels;
    std::transform(m_headings.begin(), m_headings.end(), std::back_inserter(labels), HeadingText);
    SetChildren(Branch::Headings, labels);
    labels.clear();
    std::transform(m_rowValues.begin(), m_rowValues.end(), std::back_inserter(labels), FormatFixed2);
    SetChildren(Branch::Rows, labels);
    MakeCurrent(current);
    doItemsLayout();
    verticalScrollBar()->setValue(scroll);
}

// The roots themselves stay, and so does whether they are expanded.
void FactorTableTree::SetChildren(Branch branch, const std::vector<CString>& labels) {
    QTreeWidgetItem* root = Root(branch);
    const bool isExpanded = root->isExpanded();
    qDeleteAll(root->takeChildren());
    QList<QTreeWidgetItem*> children;
    for (const CString& label : labels) {
        children += NewChild(label, static_cast<int>(children.size()));
    }
    root->addChildren(children);
    root->setExpanded(isExpanded);
}

FactorTableTree::Key FactorTableTree::CurrentKey() const {
    const QTreeWidgetItem* item = currentItem();
    if (item == nullptr || item == Root(Branch::Headings)) {
        return {Branch::Headings, true, -1};
    }
    if (item == Root(Branch::Rows)) {
        return {Branch::Rows, true, -1};
    }
    return {BranchOf(item), false, IndexOf(item)};
}

FactorTableTree::Key FactorTableTree::Moved(const Key& key, const UtilizationFactorTable& table) const {
    Key moved = key;
    if (!key.isRoot) {
        moved.index = key.branch == Branch::Headings ? MovedPlace(key.index, m_headings, table.Headings())
                                                     : MovedPlace(key.index, m_rowValues, table.RowValues());
    }
    return moved;
}

void FactorTableTree::MakeCurrent(const Key& key) {
    QTreeWidgetItem* root = Root(key.branch);
    setCurrentItem(key.index < 0 ? root : root->child(key.index));
}

void FactorTableTree::AddNew(Branch branch) {
    QTreeWidgetItem* item =
        NewChild(branch == Branch::Headings ? QStringLiteral("0,0,0") : QStringLiteral("0"), -1);
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
    m_menu->setObjectName(QStringLiteral("factorTableMenu"));
    const bool byRoomIndex = m_rowLabel == QStringLiteral("室形系数RI");
    for (const MenuEntry& entry : byRoomIndex ? kRoomIndexMenu : kCavityRatioMenu) {
        QAction* action = m_menu->addAction(CString::fromUtf16(entry.text));
        action->setEnabled(IsEnabled(entry.command, item));
        // Queued, so that the menu has gone before anything is asked or opened for editing.
        connect(
            action, &QAction::triggered, this,
            [this, command = entry.command] { Q_EMIT CommandChosen(command); }, Qt::QueuedConnection);
    }
    m_menu->popup(globalPosition);
}

}  // namespace quorvane
