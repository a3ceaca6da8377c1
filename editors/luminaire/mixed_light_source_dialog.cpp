#include "editors/luminaire/mixed_light_source_dialog.h"

#include <QPushButton>
#include <utility>

#include "data/text_format.h"
#include "editors/view/grey_commands.h"
#include "model/light_source_text.h"
#include "widgets/dialog_template.h"
#include "widgets/screen_place.h"

using namespace Qt::Literals::StringLiterals;

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

constexpr int kLightSourceColumn = 2;

const CString kCaption = u"混合光源设置"_s;
const CString kShortList = u"一套灯具的光源不多,此表不提供查找和替换"_s;

}  // namespace

CMixLuminaireSettingDlg::CMixLuminaireSettingDlg(CLightingDatabase& database, ReferenceLists& lists,
                                                 const CString& defaultLamphouse,
                                                 const CString& lamphouseCount, QWidget* parent)
    : QDialog(parent), m_database(database), m_lists(lists), m_grid(*this, m_entries, Rules()) {
    setObjectName(u"mixedLightSourceDialog"_s);
    setWindowTitle(kCaption);
    CreateControls(this, kTemplate);
    setFixedSize(DialogUnits(font()).ToPixels(kTemplateSize));
    PlaceOnScreen(this);
    m_grid.Create(kGrid, DialogItem(this, kGridFrame)->geometry(), SharesOf::ClientWidth);
    AddGreyFinding(m_grid.Control(), kShortList);
    AddGreyReplacing(m_grid.Control(), kShortList);
    AddGreyArranging(m_grid.Control(), u"行的顺序就是灯具中各光源的顺序"_s);
    setTabOrder(&m_grid.Control(), DialogItem(this, kOk));
    m_grid.Control().setFocus();

    m_categories = std::make_shared<const std::vector<CString>>(m_lists.LightSourceCategoryNames());
    m_isComplete = m_lists.HasAllCategories();
    LoadEntries(defaultLamphouse, lamphouseCount);
    m_isComplete = m_lists.IsComplete() && m_isComplete;
    DialogItem(this, kOk)->setEnabled(m_isComplete);
    m_grid.Fill();
    connect(&m_grid.Control(), &CGridCtrl::EndLabelEdit, this, &CMixLuminaireSettingDlg::CellEdited);
    connect(DialogItem<QPushButton>(this, kOk), &QPushButton::clicked, this, &QDialog::accept);
    connect(DialogItem<QPushButton>(this, kDelete), &QPushButton::clicked, this,
            &CMixLuminaireSettingDlg::DeleteSelected);
    connect(DialogItem<QPushButton>(this, kCancel), &QPushButton::clicked, this, &QDialog::reject);
    TellIncompleteOnce(parent);
}

CMixLuminaireSettingDlg::~CMixLuminaireSettingDlg() = default;

RecordGridRules<tagMIXLUMINAIREINFO> CMixLuminaireSettingDlg::Rules() {
    using Record = tagMIXLUMINAIREINFO;
    // Choosing the present category again keeps the light source.
    const auto takeCategory = [](const CString& text, Record& entry) {
        if (text != entry.Category) {
            entry.Category = text;
            entry.LightSource.clear();
        }
    };
    return {.caption = kCaption,
            .columns = {NumberColumn<Record>(0.1),
                        {.heading = u"光源类别",
                         .help = u"光源所属的类别",
                         .share = 0.3,
                         .show = [](const Record& entry) { return entry.Category; },
                         .take = takeCategory,
                         .setup =
                             [this](const Record&) {
                                 return CellSetup{.kind = CellSetup::DropDown, .choices = m_categories};
                             }},
                        {.heading = u"光源",
                         .help = u"该类别中的光源,写作“名称:型号”",
                         .share = 0.4,
                         .show = [](const Record& entry) { return entry.LightSource; },
                         .take = [](const CString& text, Record& entry) { entry.LightSource = text; },
                         .setup =
                             [this](const Record& entry) {
                                 return CellSetup{.kind = CellSetup::DropDown,
                                                  .choices = m_lists.LightSourcesOfCategory(entry.Category)};
                             },
                         .dependsOnRecord = true},
                        IntegerColumn(u"数量", u"每套灯具中这种光源的个数\n单位:个", 0.2, &Record::Count)},
            .title = [](const Record& entry) { return entry.LightSource; },
            .isBlank = [](const Record& entry) { return entry == Record{}; },
            .makeBlank = [] { return Record{}; },
            .marksChanges = false,
            .arrangesRows = false};
}

CString CMixLuminaireSettingDlg::GetLightSources() const {
    std::vector<CString> texts;
    m_entries.ForEach([&](const tagMIXLUMINAIREINFO& entry) { texts.push_back(entry.LightSource); });
    return Join(texts);
}

CString CMixLuminaireSettingDlg::GetCounts() const {
    std::vector<CString> counts;
    m_entries.ForEach(
        [&](const tagMIXLUMINAIREINFO& entry) { counts.push_back(FormatInteger(entry.Count)); });
    return Join(counts);
}

// In the results an entry without a light source would be a gap, and the next one would get its count.
void CMixLuminaireSettingDlg::accept() {
    if (!m_isComplete) {
        return;  // what could not be read would be lost
    }
    m_grid.EndEditing();
    int row = 1;
    while (row <= m_entries.Count() && !m_entries.At(row - 1).LightSource.isEmpty()) {
        ++row;
    }
    if (row > m_entries.Count()) {
        QDialog::accept();
        return;
    }
    ShowMessage(this, FormatText(u"第%d行没有选择光源,请选择光源或删除该行。"_s, {row}), kCaption);
    m_grid.Control().SetFocusCell({row, kLightSourceColumn});
    m_grid.Control().setFocus();
}

// Unlike a light source that is not in the database, one that could not be read is missing in the dialog.
void CMixLuminaireSettingDlg::LoadEntries(const CString& lightSources, const CString& counts) {
    std::vector<tagMIXLUMINAIREINFO> entries;
    for (const CString& text : m_lists.SplitLightSourceTexts(lightSources)) {
        const int lightSourceId = m_lists.LightSourceId(text);
        if (lightSourceId != 0) {
            tagLAMPHOUSEINFO lightSource;
            m_isComplete = m_database.LoadLightSourceByID(lightSourceId, lightSource) && m_isComplete;
            entries.push_back({.ID = static_cast<int>(entries.size()) + 1,
                               .Category = m_lists.CategoryName(lightSource.LamphouseType),
                               .LightSource = text});
            m_lists.LightSourcesOfCategory(entries.back().Category);
        }
    }
    auto entry = entries.begin();
    for (const CString& count : Split(counts, u',')) {
        if (entry == entries.end()) {
            break;
        }
        (entry++)->Count = ToInteger(count);
    }
    m_entries.TakeLoaded(std::move(entries));
}

// After the grid has taken the cell.
void CMixLuminaireSettingDlg::CellEdited() {
    m_grid.NumberRows();
    TellIncompleteOnce(this);
}

void CMixLuminaireSettingDlg::TellIncompleteOnce(QWidget* parent) {
    const bool isComplete = m_isComplete && m_lists.IsComplete();
    if (!isComplete && !std::exchange(m_toldIncomplete, true)) {
        TellIncompleteLoad(parent, kCaption);
    }
}

void CMixLuminaireSettingDlg::DeleteSelected() {
    m_grid.EndEditing();
    const CCellRange selected = m_grid.Control().GetSelectedCellRange();
    if (m_grid.Control().IsValid(selected) && m_grid.DeleteRow(selected.minRow) == DeleteAnswer::Yes) {
        m_grid.NumberRows();
    }
}

}  // namespace quorvane
