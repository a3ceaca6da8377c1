// CQuorvaneDemandDlg: the page "照度要求及功率密度", on which the illuminance requirements and lighting power
// densities of one building type of one trade are edited.
#pragma once

#include "data/lighting_database.h"
#include "editors/page.h"
#include "editors/record_grid.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace quorvane {

class CQuorvaneDemandDlg : public CPage {
public:
    // The database outlives the page.
    CQuorvaneDemandDlg(CLightingDatabase& database, QWidget* parent);

    bool IsModified() const override { return m_records.IsModified(); }
    int EditCount() const override { return m_records.EditCount(); }
    int RemovedCount() const override { return m_records.RemovedCount(); }
    void EndEditing() override { m_grid.EndEditing(); }
    bool Submit() override;
    void Refresh() override { m_grid.Refresh(); }
    bool DeleteSelected() override { return m_grid.DeleteSelected(); }
    void Reload() override;
    void AddCommand(QAction& command) override { m_grid.AddCommand(command); }
    std::function<QCborMap()> KeepEdits() const override;
    QStringList MakeEditsAgain(const QCborMap& kept) override;

private:
    RecordGridRules<tagILLUMINANCESTANDARD> Rules();
    void FillTree();
    void ChangeBuildingType(QTreeWidgetItem* item);
    // The requirements of all building types. False when not all of them could be read.
    bool LoadAll(std::vector<tagILLUMINANCESTANDARD>& all);

    CLightingDatabase& m_database;
    WorkingRecords<tagILLUMINANCESTANDARD> m_records;
    RecordGrid<tagILLUMINANCESTANDARD> m_grid;
    QTreeWidget* m_tree;
    QTreeWidgetItem* m_shownItem = nullptr;  // the tree returns to it when changes cannot be settled
    bool m_isChosenByPress = false;          // a press has chosen the item; its click chooses nothing
    // What is shown; new records belong there, whatever is selected in the tree meanwhile.
    CString m_vocation;
    CString m_buildingType;
};

}  // namespace quorvane
