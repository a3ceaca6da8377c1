// The tree beside a utilization factor table: column headings under one root, row values under another.
#pragma once

#include <QMenu>
#include <QPointer>
#include <vector>

#include "model/factor_table/factor_table_editing.h"
#include "widgets/label_edit_tree.h"

namespace quorvane {

class FactorTableTree : public LabelEditTree {
    Q_OBJECT

public:
    using Branch = FactorTableBranch;
    enum class Command { NewHeading = 32771, NewRow = 32772, DeleteHeading = 32773, DeleteRow = 32774 };

    // rowLabel is the name of the row values.
    FactorTableTree(const CString& rowLabel, QWidget* parent);

    // Refills the tree, which removes a new item that the table did not accept. Expanded roots, the scroll
    // position and the current entry stay, also when the label of the entry has changed.
    void Show(const FactorTableEditing& editing);

    // The branch of an item that is no root.
    Branch BranchOf(const QTreeWidgetItem* item) const;
    // The item's index among the headings or row values, or -1 for a new item.
    static int IndexOf(const QTreeWidgetItem* item);

    void ExpandBranch(Branch branch) { Root(branch)->setExpanded(true); }
    // Adds a new item and opens it for editing.
    void AddNew(Branch branch);

Q_SIGNALS:
    // The user went to an entry, by mouse or key.
    void EntryChosen(FactorTableBranch branch, int index);
    // The user chose a command for the current item.
    void CommandChosen(FactorTableTree::Command command);

private:
    // The entry that an item stands for.
    struct Entry {
        Branch branch;
        bool isRoot;
        int index;  // -1: a root or a new item
    };

    QTreeWidgetItem* Root(Branch branch) const { return topLevelItem(static_cast<int>(branch)); }
    void SetChildren(Branch branch, const FactorTableEditing& editing);
    Entry CurrentEntry() const;
    Entry AfterChange(const Entry& entry, const UtilizationFactorTable& table) const;
    void MakeCurrent(const Entry& entry);
    bool IsEnabled(Command command, const QTreeWidgetItem* item) const;
    void OnCurrentChanged(const QTreeWidgetItem* item);
    void OpenMenu(QTreeWidgetItem* item, const QPoint& globalPosition);

    CString m_rowLabel;
    bool m_isFilling = false;
    std::vector<tagColHeading> m_headings;  // those shown
    std::vector<double> m_rowValues;
    QPointer<QMenu> m_menu;
};

}  // namespace quorvane
