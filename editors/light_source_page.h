// CQuorvaneLamphouseDlg: the page "光源库", on which light sources are edited, one category or one maker at a
// time.
#pragma once

#include <map>

#include "data/lighting_database.h"
#include "editors/cell_setup.h"
#include "editors/record_page.h"
#include "widgets/ease_combo_box.h"

class QRadioButton;

namespace quorvane {

class CQuorvaneLamphouseDlg : public RecordPage<tagLAMPHOUSEINFO> {
public:
    CQuorvaneLamphouseDlg(CLightingDatabase& database, QWidget* parent);
    ~CQuorvaneLamphouseDlg() override;

protected:
    void WriteRow(int row, const tagLAMPHOUSEINFO& record) override;
    void WriteAppendRow(int row) override;
    void ReadCell(int row, int column, tagLAMPHOUSEINFO& record) override;
    bool IsBlank(const tagLAMPHOUSEINFO& record) const override;
    CString Title(const tagLAMPHOUSEINFO& record) const override { return record.LamphouseName; }
    bool Insert(tagLAMPHOUSEINFO& record) override { return m_database.InsertLightSource(record); }
    bool Update(tagLAMPHOUSEINFO& record) override { return m_database.UpdateLightSource(record); }
    bool Delete(int id) override { return m_database.DeleteLightSource(id); }

private:
    enum class Mode { ByCategory, ByMaker };

    // Both say whether the whole list could be read.
    bool FillCategoryList();
    bool CompleteMakerList();
    void ChooseMode(Mode mode);
    void ShowMode(Mode mode);
    void ChangeFilter(CEaseComboBox* list, CString& lastText);
    void Load();

    CString CategoryName(int categoryId);
    int CategoryId(const CString& name, int present);

    CLightingDatabase& m_database;
    std::unique_ptr<CBtnDataBase> m_buttons;
    QRadioButton* m_byCategory;
    QRadioButton* m_byMaker;
    CEaseComboBox* m_categories;
    CEaseComboBox* m_makers;
    CString m_lastCategory;
    CString m_lastMaker;
    CellChoices m_categoryChoices;
    std::map<int, CString> m_categoryNames;  // of every category met, so that a fill asks once for each
    Mode m_mode = Mode::ByCategory;
};

}  // namespace quorvane
