#include "editors/luminaire/mixed_light_source_dialog.h"

#include <QPushButton>
#include <algorithm>

#include "data/number_text.h"
#include "data/text_format.h"
#include "editors/grid_setup.h"
#include "grid/cells/btn_data_base.h"
#include "model/light_source_categories.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"
#include "widgets/dialog_template.h"
#include "widgets/message_box.h"

namespace quorvane {
namespace {

constexpr int kGridFrame = 1013;
constexpr int kOk = 1;
constexpr int kDelete = 1015;
constexpr int kCancel = 2;
constexpr int kGrid = 100;

const DialogControl kTemplate[] = {
    {kGridFrame, ControlKind::Frame, u"", {7, 7, 306, 150}},
    {kOk, ControlKind::PushButton, u"确定", {56, 165, 44, 16}},
    {kDelete, ControlKind::PushButton, u"删除", {138, 165, 44, 16}},
    {kCancel, ControlKind::PushButton, u"取消", {220, 165, 44, 16}},
};
constexpr QSize kTemplateSize(320, 188);

enum Column { Number, Category, LightSource, Count };

const GridColumn kColumns[] = {{u"序号", 0.1}, {u"光源类别", 0.3}, {u"光源", 0.4}, {u"数量", 0.2}};

const CString kCaption = QStringLiteral("混合光源设置");

}  // namespace

CMixLuminaireSettingDlg::CMixLuminaireSettingDlg(CLightingDatabase& database, const CString& defaultLamphouse,
                                                 const CString& lamphouseCount, QWidget* parent)
    : QDialog(parent), m_database(database), m_lists(database), m_buttons(std::make_unique<CBtnDataBase>()) {
    setObjectName(QStringLiteral("mixedLightSourceDialog"));
    setWindowTitle(kCaption);
    CreateControls(this, kTemplate);
    setFixedSize(DialogUnits(font()).ToPixels(kTemplateSize));
    m_grid =
        CreateGrid(this, kGrid, DialogItem(this, kGridFrame)->geometry(), kColumns, SharesOf::ClientWidth);
    setTabOrder(m_grid, DialogItem(this, kOk));
    m_grid->setFocus();

    LoadCategories();
    LoadEntries(defaultLamphouse, lamphouseCount);
    FillGrid();
    connect(m_grid, &CGridCtrl::EndLabelEdit, this, &CMixLuminaireSettingDlg::CellEdited);
    connect(DialogItem<QPushButton>(this, kOk), &QPushButton::clicked, this, &QDialog::accept);
    connect(DialogItem<QPushButton>(this, kDelete), &QPushButton::clicked, this,
            &CMixLuminaireSettingDlg::DeleteSelected);
    connect(DialogItem<QPushButton>(this, kCancel), &QPushButton::clicked, this, &QDialog::reject);
    if (!m_isWhole) {
        TellIncompleteLoad(parent, kCaption);
    }
}

CMixLuminaireSettingDlg::~CMixLuminaireSettingDlg() = default;

CString CMixLuminaireSettingDlg::GetLightSources() const {
    std::vector<CString> texts;
    for (const tagMIXLUMINAIREINFO& entry : m_entries) {
        texts.push_back(entry.LightSource);
    }
    return Join(texts);
}

CString CMixLuminaireSettingDlg::GetCounts() const {
    std::vector<CString> counts;
    for (const tagMIXLUMINAIREINFO& entry : m_entries) {
        counts.push_back(FormatInteger(entry.Count));
    }
    return Join(counts);
}

// In the results an entry without a light source would leave a gap, and its count would go to the next one.
void CMixLuminaireSettingDlg::accept() {
    m_grid->EndEdit();
    const auto unset = std::find_if(m_entries.begin(), m_entries.end(), [](const tagMIXLUMINAIREINFO& entry) {
        return entry.LightSource.isEmpty();
    });
    if (unset == m_entries.end()) {
        QDialog::accept();
        return;
    }
    const int row = static_cast<int>(unset - m_entries.begin()) + 1;
    ShowMessage(this, FormatText(QStringLiteral("第%d行没有选择光源,请选择光源或删除该行。"), {row}),
                kCaption);
    m_grid->SetFocusCell({row, LightSource});
    m_grid->setFocus();
}

void CMixLuminaireSettingDlg::LoadCategories() {
    std::vector<tagLAMPHOUSETYPE> types;
    m_isWhole = m_database.LoadLampTypes(types);
    std::vector<CString> names;
    for (const tagLAMPHOUSETYPE& type : types) {
        if (type.LamphouseType != kMixedLight && type.LamphouseType != kCommonLuminaires) {
            names.push_back(type.LamphouseType);
        }
    }
    m_categories = std::make_shared<const std::vector<CString>>(std::move(names));
    m_lists.SetCategories(std::move(types));
}

// A light source for which the database did not answer is missed here, unlike one that is gone.
void CMixLuminaireSettingDlg::LoadEntries(const CString& lightSources, const CString& counts) {
    for (const CString& text : m_lists.SplitLightSourceTexts(lightSources)) {
        const int lightSourceId = m_lists.LightSourceId(text);
        if (lightSourceId != 0) {
            tagLAMPHOUSEINFO lightSource;
            m_isWhole = m_database.LoadLightSourceByID(lightSourceId, lightSource) && m_isWhole;
            m_entries.push_back({.ID = NextId(),
                                 .Category = m_lists.CategoryNames(FormatInteger(lightSource.LamphouseType)),
                                 .LightSource = text});
        }
    }
    m_isWhole = m_lists.IsWhole() && m_isWhole;
    auto entry = m_entries.begin();
    for (const CString& count : Split(counts, u',')) {
        if (entry == m_entries.end()) {
            break;
        }
        (entry++)->Count = ToInteger(count);
    }
}

CellChoices CMixLuminaireSettingDlg::LightSourcesOf(const CString& category) {
    const auto known = m_lightSources.find(category);
    if (known != m_lightSources.end()) {
        return known->second;
    }
    std::vector<tagLAMPHOUSEINFO> records;
    const bool whole = m_database.LoadLightSourcesByTypeName(category, records);
    std::vector<CString> texts;
    texts.reserve(records.size());
    for (const tagLAMPHOUSEINFO& record : records) {
        texts.push_back(LightSourceText(record));
    }
    auto choices = std::make_shared<const std::vector<CString>>(std::move(texts));
    if (whole) {
        m_lightSources.emplace(category, choices);
    }
    m_isWhole = whole && m_isWhole;
    return choices;
}

void CMixLuminaireSettingDlg::FillGrid() {
    for (const tagMIXLUMINAIREINFO& entry : m_entries) {
        const int row = m_grid->InsertRow({});
        WriteRowHead(*m_grid, row, FormatInteger(row), entry.ID);
        WriteRow(row, entry);
    }
    AddAppendRow();
}

void CMixLuminaireSettingDlg::WriteRow(int row, const tagMIXLUMINAIREINFO& entry) {
    WriteCombo(row, Category, m_categories, entry.Category);
    WriteCombo(row, LightSource, LightSourcesOf(entry.Category), entry.LightSource);
    WriteCell(*m_grid, row, Count, FormatInteger(entry.Count), kCentred);
}

// The text is shown also when it is not among the choices.
void CMixLuminaireSettingDlg::WriteCombo(int row, int column, const CellChoices& choices,
                                         const CString& text) {
    SetUpComboCell(*m_grid, *m_buttons, row, column, choices, text);
    m_grid->SetItemText(row, column, text);
}

void CMixLuminaireSettingDlg::AddAppendRow() {
    const int row = m_grid->InsertRow({});
    WriteRowHead(*m_grid, row, QStringLiteral("追加"), 0);
    WriteRow(row, {});
}

void CMixLuminaireSettingDlg::NumberRows() {
    for (int row = 1; row <= static_cast<int>(m_entries.size()); ++row) {
        m_grid->SetItemText(row, Number, FormatInteger(row));
    }
}

void CMixLuminaireSettingDlg::CellEdited(int row, int column) {
    const tagMIXLUMINAIREINFO* known = Find(m_grid->GetItemData(row, 0));
    const CString category = m_grid->GetItemText(row, Category);
    m_isWhole = true;
    // Picking the present category again keeps the light source.
    if (column == Category && category != (known != nullptr ? known->Category : CString())) {
        WriteCombo(row, LightSource, LightSourcesOf(category), {});
    }
    tagMIXLUMINAIREINFO entry = ReadRow(row);
    if (entry.ID != 0) {
        *Find(entry.ID) = entry;
    } else if (entry != tagMIXLUMINAIREINFO{}) {
        entry.ID = NextId();
        m_grid->SetItemData(row, Number, entry.ID);
        m_entries.push_back(std::move(entry));
        NumberRows();
        AddAppendRow();
    }
    if (!m_isWhole) {
        TellIncompleteLoad(this, kCaption);
    }
}

tagMIXLUMINAIREINFO CMixLuminaireSettingDlg::ReadRow(int row) {
    const int count = ReadInteger(*m_grid, row, Count);
    return {.ID = m_grid->GetItemData(row, Number),
            .Category = m_grid->GetItemText(row, Category),
            .LightSource = m_grid->GetItemText(row, LightSource),
            .Count = count};
}

void CMixLuminaireSettingDlg::DeleteSelected() {
    m_grid->EndEdit();
    const CCellRange selected = m_grid->GetSelectedCellRange();
    if (!m_grid->IsValid(selected)) {
        return;
    }
    const int row = selected.minRow;
    const tagMIXLUMINAIREINFO* entry = Find(m_grid->GetItemData(row, Number));
    if (entry != nullptr && AskToDelete(this, kCaption, row, entry->LightSource)) {
        m_entries.erase(m_entries.begin() + (entry - m_entries.data()));
        m_grid->DeleteRow(row);
        NumberRows();
    }
}

tagMIXLUMINAIREINFO* CMixLuminaireSettingDlg::Find(int id) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [id](const tagMIXLUMINAIREINFO& entry) { return entry.ID == id; });
    return found == m_entries.end() ? nullptr : &*found;
}

// The number of entries and one, and beyond every ID that stayed when others were deleted.
int CMixLuminaireSettingDlg::NextId() const {
    int highest = 0;
    for (const tagMIXLUMINAIREINFO& entry : m_entries) {
        highest = std::max(highest, entry.ID);
    }
    return highest + 1;
}

}  // namespace quorvane
