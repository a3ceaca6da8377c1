// CQuorvaneLuminaireDlg: the page "灯具库", on which the luminaires of one light source category are edited,
// copied and pasted, and from which everything that hangs on a luminaire is opened.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "data/lighting_database.h"
#include "editors/luminaire/type_chooser.h"
#include "editors/record_page.h"
#include "model/luminaire_lists.h"
#include "model/photo_store.h"
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
    void showEvent(QShowEvent* event) override;
    void WriteRow(int row, const tagLUMINAIREINFO& record) override;
    void WriteAppendRow(int row) override;
    void ReadCell(int row, int column, tagLUMINAIREINFO& record) override;
    bool IsBlank(const tagLUMINAIREINFO& record) const override;
    CString Title(const tagLUMINAIREINFO& record) const override { return record.LampName; }
    bool Insert(tagLUMINAIREINFO& record) override;
    bool Update(tagLUMINAIREINFO& record) override;
    bool Delete(int id) override;
    // Also when luminaires were written that no filter will show again.
    bool NeedsAnotherLook() override { return RecordPage::NeedsAnotherLook() || CountWithoutCategory() > 0; }

private:
    using Factors = std::vector<tagLUMINAIREUTILIZATIONFACTOR>;

    // A luminaire, its picture, if the library holds one, and its utilization factors, as last copied.
    struct CopyBuffer {
        tagLUMINAIREINFO luminaire;  // blank: nothing copied
        PhotoStore::KeptPicture picture;
        Factors factors;
    };

    // What the next writing of a record brings along beside its fields.
    struct Luggage {
        CString photo;                    // as long as this is the record's photo,
        PhotoStore::KeptPicture picture;  // this is its picture, if there is one
        std::optional<Factors> factors;   // pasted ones, which take the place of those in the file
    };

    void ChangeFilter();
    CString FilterCategoryIds();
    void WriteLightSourceCells(int row, const tagLUMINAIREINFO& record);
    void WriteAppendRowLightSource(int row);
    void PrepareLightSourceCells(int row, const CString& categoryIds, const CString& texts);
    void RenewLightSourceCells();

    void MarkState(int row, int column, unsigned state);

    void OpenTypeChooser(int row);
    void TakeChosenTypes(const std::vector<CString>& names);
    void PressButton(int row, int column);
    void OpenMixedLightSources(int row);
    void OpenPhoto(int row);
    void OpenFactorTable(int row);

    void KeepPictures();
    PhotoStore::KeptPicture PictureOf(const tagLUMINAIREINFO& record) const;
    int CountWithoutCategory();
    int SaveRow(int row);
    int SelectedRow() const;
    void Copy();
    void Paste();
    bool ReplaceFactors(int luminaireId, const Factors& factors);
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
    std::map<int, Luggage> m_luggage;  // by record ID
};

}  // namespace quorvane
