// CQuorvaneLamphouseDlg: the page "光源库", on which the light sources of one category or of one maker are
// edited.
#pragma once

#include <QPersistentModelIndex>

#include "data/lighting_database.h"
#include "editors/page.h"
#include "editors/record_grid.h"
#include "model/reference_lists.h"
#include "widgets/ease_combo_box.h"

class QRadioButton;

namespace quorvane {

class CQuorvaneLamphouseDlg : public CPage {
public:
    // Both arguments outlive the page.
    CQuorvaneLamphouseDlg(CLightingDatabase& database, ReferenceLists& lists, QWidget* parent);
    ~CQuorvaneLamphouseDlg() override;

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
    enum class Mode { ByCategory, ByMaker };

    RecordGridRules<tagLAMPHOUSEINFO> Rules();
    tagLAMPHOUSEINFO MakeBlank();
    void TakeCategory(const CString& name, tagLAMPHOUSEINFO& record);

    void FillCategoryList();
    void FillMakerList();
    bool CompleteMakerList();
    void ChooseMode(Mode mode);
    void ShowMode(Mode mode);
    bool SettleChanges();
    void ChangeFilter(CEaseComboBox& list, QPersistentModelIndex& last);
    void Load();
    void Compare(SubmitFailures& failures);

    CLightingDatabase& m_database;
    ReferenceLists& m_lists;
    WorkingRecords<tagLAMPHOUSEINFO> m_records;
    RecordGrid<tagLAMPHOUSEINFO> m_grid;
    QRadioButton* m_byCategory;
    QRadioButton* m_byMaker;
    CEaseComboBox* m_categories;
    CEaseComboBox* m_makers;
    QPersistentModelIndex m_lastCategory;
    QPersistentModelIndex m_lastMaker;
    CellChoices m_categoryChoices;
    bool m_isMakerListFilled = false;
    Mode m_mode = Mode::ByCategory;
};

}  // namespace quorvane
