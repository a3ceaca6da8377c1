// CQuorvaneLuminaireDlg: the page "灯具库", on which the luminaires of one light source category are edited,
// copied and pasted, and from which everything that hangs on a luminaire is opened.
#pragma once

#include "data/lighting_database.h"
#include "editors/luminaire_lists.h"
#include "editors/photo_store.h"
#include "editors/record_page.h"
#include "editors/type_chooser.h"
#include "widgets/ease_combo_box.h"

class QPushButton;

namespace quorvane {

class CQuorvaneLuminaireDlg : public RecordPage<tagLUMINAIREINFO> {
public:
    CQuorvaneLuminaireDlg(CLightingDatabase& database, QWidget* parent);
    ~CQuorvaneLuminaireDlg() override;

    bool Submit() override;
    void Refresh() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void WriteRow(int row, const tagLUMINAIREINFO& record) override;
    void WriteAppendRow(int row) override;
    void ReadCell(int row, int column, tagLUMINAIREINFO& record) override;
    bool IsBlank(const tagLUMINAIREINFO& record) const override;
    CString Title(const tagLUMINAIREINFO& record) const override { return record.LampName; }
    bool Insert(tagLUMINAIREINFO& record) override;
    bool Update(tagLUMINAIREINFO& record) override;
    bool Delete(int id) override;

private:
    // A luminaire and its utilization factors, as last copied. Its photo is one that stays what it is.
    struct CopyBuffer {
        tagLUMINAIREINFO luminaire;  // blank: nothing copied
        std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors;
    };

    void ChangeFilter();
    CString FilterCategoryIds();
    void PrepareLightSourceCells(int row, const CString& categoryIds, const CString& texts);

    void MarkReadOnly(int row, int column, bool readOnly);

    void OpenTypeChooser(int row);
    void TakeChosenTypes(const std::vector<CString>& names);
    void PressButton(int row, int column);
    void OpenMixedLightSources(int row);
    void OpenPhoto(int row);
    void OpenFactorTable(int row);

    void SetPhotosAside();
    int SaveRow(int row);
    int SelectedRow() const;
    void Copy();
    void Paste();
    void PasteFactors(int luminaireId);
    bool ReplaceFactors(int luminaireId);
    void EnablePaste();

    CLightingDatabase& m_database;
    LuminaireLists m_lists;
    PhotoStore m_photos;
    std::unique_ptr<CBtnDataBase> m_buttons;
    std::unique_ptr<CLamphouseTypeChoiceWindow> m_chooser;
    int m_chooserRow = -1;
    CEaseComboBox* m_filter;
    CString m_lastFilter;
    CString m_presetLightSource;  // what the append row offers before anybody chose
    QPushButton* m_paste;
    CopyBuffer m_copied;
};

}  // namespace quorvane
