// CMixLuminaireSettingDlg: the dialog "混合光源设置", in which the light sources of a mixed-light luminaire
// and their counts are set.
#pragma once

#include <QDialog>

#include "data/lighting_database.h"
#include "editors/record_grid.h"
#include "model/reference_lists.h"

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
    // defaultLamphouse: light source texts joined by ","; those that are not in the database are left out.
    // lamphouseCount: counts joined by ",", taken one by one for the light sources that remain. database and
    // lists outlive the dialog.
    CMixLuminaireSettingDlg(CLightingDatabase& database, ReferenceLists& lists,
                            const CString& defaultLamphouse, const CString& lamphouseCount, QWidget* parent);
    ~CMixLuminaireSettingDlg() override;

    // The results once exec() has returned Accepted: the texts and the counts of all entries, joined by ",".
    CString GetLightSources() const;
    CString GetCounts() const;

    // Takes a text that is still being typed before the dialog ends. While an entry has no light source, the
    // dialog does not end and tells the user.
    void accept() override;

private:
    RecordGridRules<tagMIXLUMINAIREINFO> Rules();
    void LoadEntries(const CString& lightSources, const CString& counts);
    void CellEdited();
    void TellIncompleteOnce(QWidget* parent);
    void DeleteSelected();

    CLightingDatabase& m_database;
    ReferenceLists& m_lists;
    CellChoices m_categories;
    WorkingRecords<tagMIXLUMINAIREINFO> m_entries{NewIds::Serial};
    RecordGrid<tagMIXLUMINAIREINFO> m_grid;
    bool m_isComplete = true;  // the database has answered everything
    bool m_toldIncomplete = false;
};

}  // namespace quorvane
