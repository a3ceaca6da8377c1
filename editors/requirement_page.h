// CQuorvaneDemandDlg: the page "照度要求及功率密度", on which the illuminance requirements and lighting power
// densities of one building type of one trade are edited at a time.
#pragma once

#include "data/lighting_database.h"
#include "editors/record_page.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace quorvane {

class CQuorvaneDemandDlg : public RecordPage<tagILLUMINANCESTANDARD> {
public:
    CQuorvaneDemandDlg(CLightingDatabase& database, QWidget* parent);

protected:
    void WriteRow(int row, const tagILLUMINANCESTANDARD& record) override;
    void WriteAppendRow(int row) override;
    bool HasAppendRow() const override { return m_isBuildingTypeShown; }
    void ReadCell(int row, int column, tagILLUMINANCESTANDARD& record) override;
    bool IsBlank(const tagILLUMINANCESTANDARD& record) const override;
    CString Title(const tagILLUMINANCESTANDARD& record) const override { return record.Location; }
    bool Insert(tagILLUMINANCESTANDARD& record) override;
    bool Update(tagILLUMINANCESTANDARD& record) override;
    bool Delete(int id) override;

private:
    void FillTree();
    void ChangeBuildingType(QTreeWidgetItem* item);

    CLightingDatabase& m_database;
    QTreeWidget* m_tree;
    QTreeWidgetItem* m_shownItem = nullptr;  // what is loaded, where the tree goes back to
    // What is loaded: new records belong there, whatever the tree has gone on to.
    CString m_vocation;
    CString m_buildingType;
    bool m_isBuildingTypeShown = false;  // false at first and when a trade itself is selected
};

}  // namespace quorvane
