// CQuorvaneLuminaireDlg: the page "灯具库", on which the luminaires of one light source category are edited,
// copied and pasted, and from which the dialogs for everything that belongs to a luminaire are opened.
#pragma once

#include "data/lighting_database.h"
#include "editors/luminaire/type_chooser.h"
#include "editors/page.h"
#include "editors/photo/photo_tips.h"
#include "editors/record_grid.h"
#include "model/reference_lists.h"
#include "model/working_luminaires.h"
#include "widgets/ease_combo_box.h"

class QPushButton;

namespace quorvane {

class CCoefficientTableDlg;

class CQuorvaneLuminaireDlg : public CPage {
public:
    // Both arguments outlive the page.
    CQuorvaneLuminaireDlg(CLightingDatabase& database, ReferenceLists& lists, QWidget* parent);
    ~CQuorvaneLuminaireDlg() override;

    bool IsModified() const override { return m_luminaires.Records().IsModified(); }
    // An open factor table that has been edited counts as one.
    int EditCount() const override;
    int RemovedCount() const override { return m_luminaires.Records().RemovedCount(); }
    void EndEditing() override { m_grid.EndEditing(); }
    bool Submit() override;
    void Refresh() override;
    bool DeleteSelected() override { return m_grid.DeleteSelected(); }
    void Reload() override;
    void AddCommand(QAction& command) override { m_grid.AddCommand(command); }
    std::function<QCborMap()> KeepEdits() const override;
    QStringList MakeEditsAgain(const QCborMap& kept) override;
    void OpenKeptDialog() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    RecordGridRules<tagLUMINAIREINFO> Rules();
    std::vector<Column<tagLUMINAIREINFO>> Columns();
    static CString FactorKindText(const tagLUMINAIREINFO& luminaire);
    static CString CountText(const CString& typed);  // an empty count is 0
    CellSetup LightSourceSetup(const tagLUMINAIREINFO& record);
    void TakeCategories(const CString& names, tagLUMINAIREINFO& record);
    void SetCategories(const std::vector<CString>& names, tagLUMINAIREINFO& record);
    void TakeLightSources(const CString& texts, tagLUMINAIREINFO& record);
    CString PresetLightSource();
    const CString& CategoriesOf(const tagLUMINAIREINFO& record) const;
    bool IsBlank(const tagLUMINAIREINFO& record) const;

    void MakeControls();
    bool SettleChanges();
    void ChangeFilter();
    bool IsBehindCategories(int entry) const;
    int CountLeftOut() const;
    void Load();
    void LoadListsOfRecords();

    void OpenTypeChooser(CCellID cell);
    void TakeChosenTypes(const std::vector<CString>& names);
    void OpenMixedLightSources(int row);
    void OpenPhoto(int row);
    void TakeDroppedPhoto(int row, const QStringList& paths);
    GridTip PhotoTip(const tagLUMINAIREINFO& record);
    GridTip LightSourceTip(const tagLUMINAIREINFO& record);
    void OpenFactorTable(int row);
    void EditFactorTable();
    // Makes the dialog of the luminaire's factors, for EditFactorTable.
    void MakeFactorTable(const tagLUMINAIREINFO& record);
    QStringList PasteFactorsAgain(const QCborArray& kept, int id);

    int SelectedRow();
    void Copy();
    void Paste();
    void ShowSaved(int row, const WorkingLuminaires::Saved& saved);

    CLightingDatabase& m_database;
    ReferenceLists& m_lists;
    WorkingLuminaires m_luminaires;
    RecordGrid<tagLUMINAIREINFO> m_grid;
    PhotoTips m_photoTips;
    CLamphouseTypeChoiceWindow m_chooser;
    int m_chooserRow = -1;
    std::unique_ptr<CCoefficientTableDlg> m_factorTable;  // while it is open
    CEaseComboBox* m_filter;
    QPersistentModelIndex m_lastFilter;
    CString m_photoFolder;        // from which the last photo was chosen
    CString m_filterCategoryId;   // that of the loaded luminaires, or empty
    CString m_presetLightSource;  // what the append row offers before the user chooses
    QPushButton* m_paste;
};

}  // namespace quorvane
