// CMixLuminaireSettingDlg: the dialog "混合光源设置", in which the light sources of a mixed-light luminaire
// and how many of each it carries are set.
#pragma once

#include <QDialog>
#include <map>
#include <memory>
#include <vector>

#include "data/lighting_database.h"
#include "editors/cell_setup.h"
#include "model/luminaire_lists.h"

namespace quorvane {

// One light source of the luminaire.
struct tagMIXLUMINAIREINFO {
    int ID = 0;  // serial number inside the dialog, not an ID of the database
    CString Category;
    CString LightSource;  // its name, ":" and its model
    int Count = 0;

    bool operator==(const tagMIXLUMINAIREINFO&) const = default;
};

class CMixLuminaireSettingDlg : public QDialog {
    Q_OBJECT

public:
    // defaultLamphouse: light source texts joined by ","; those that the database does not hold are left out.
    // lamphouseCount: counts joined by ",", taken one by one for the light sources that remain.
    CMixLuminaireSettingDlg(CLightingDatabase& database, const CString& defaultLamphouse,
                            const CString& lamphouseCount, QWidget* parent);
    ~CMixLuminaireSettingDlg() override;

    // The results once exec() has returned Accepted: the texts and the counts of all entries, joined by ",".
    CString GetLightSources() const;
    CString GetCounts() const;

    // Takes an edit that is still being typed in before the dialog ends. It does not end while an entry has
    // no light source, which the user is told.
    void accept() override;

private:
    void LoadCategories();
    void LoadEntries(const CString& lightSources, const CString& counts);
    CellChoices LightSourcesOf(const CString& category);

    void FillGrid();
    void WriteRow(int row, const tagMIXLUMINAIREINFO& entry);
    void WriteCombo(int row, int column, const CellChoices& choices, const CString& text);
    void AddAppendRow();
    void NumberRows();

    void CellEdited(int row, int column);
    tagMIXLUMINAIREINFO ReadRow(int row);
    void DeleteSelected();
    tagMIXLUMINAIREINFO* Find(int id);
    int NextId() const;

    CLightingDatabase& m_database;
    LuminaireLists m_lists;
    std::unique_ptr<CBtnDataBase> m_buttons;
    CGridCtrl* m_grid;  // child of this dialog
    CellChoices m_categories;
    std::map<CString, CellChoices> m_lightSources;  // by category, each read once
    std::vector<tagMIXLUMINAIREINFO> m_entries;     // in row order
    bool m_isWhole = true;                          // the database has answered everything
};

}  // namespace quorvane
