// The tree beside a utilization factor table: its column headings under one root, its row values under
// another.
#pragma once

#include <QMenu>
#include <QPointer>
#include <vector>

#include "data/utilization_factor_table.h"
#include "widgets/label_edit_tree.h"

namespace quorvane {

// A heading as it is typed and shown, "%d,%d,%d".
CString HeadingText(const tagColHeading& heading);

class FactorTableTree : public LabelEditTree {
    Q_OBJECT

public:
    enum class Branch { Headings, Rows };
    enum class Command { NewHeading = 32771, NewRow = 32772, DeleteHeading = 32773, DeleteRow = 32774 };

    // rowLabel is what a row value is called.
    FactorTableTree(const CString& rowLabel, QWidget* parent);

    // Fills the tree anew; a new item that the table has not taken up goes. What is expanded and scrolled to
    // stays so. The current item stays the current one, also under another label.
    void Show(const UtilizationFactorTable& table);

    // For an item under one of the roots.
    Branch BranchOf(const QTreeWidgetItem* item) const;
    // The item's place among the headings or row values, or -1 for a new one that they do not hold yet.
    static int IndexOf(const QTreeWidgetItem* item);

    void ExpandBranch(Branch branch) { Root(branch)->setExpanded(true); }
    // Adds an item that the table does not hold yet, and opens it for editing.
    void AddNew(Branch branch);

Q_SIGNALS:
    // A command was chosen from the menu; it concerns the current item.
    void CommandChosen(FactorTableTree::Command command);

private:
    // What an item stands for, whatever its place in the tree.
    struct Key {
        Branch branch;
        bool isRoot;
        int index;  // -1 also for a new item
    };

    QTreeWidgetItem* Root(Branch branch) const { return topLevelItem(static_cast<int>(branch)); }
    void SetChildren(Branch branch, const std::vector<CString>& labels);
    Key CurrentKey() const;
    Key Moved(const Key& key, const UtilizationFactorTable& table) const;
    void MakeCurrent(const Key& key);
    bool IsEnabled(Command command, const QTreeWidgetItem* item) const;
    void OpenMenu(QTreeWidgetItem* item, const QPoint& globalPosition);

    CString m_rowLabel;
    std::vector<tagColHeading> m_headings;  // as shown
    std::vector<double> m_rowValues;
    QPointer<QMenu> m_menu;
};

}  // namespace quorvane
