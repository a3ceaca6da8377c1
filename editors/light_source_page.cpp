#include "editors/light_source_page.h"

#include <QRadioButton>
#include <set>

#include "editors/filter_list.h"
#include "editors/first_paint.h"
#include "editors/kept_records.h"
#include "editors/submit.h"
#include "model/light_source_categories.h"
#include "model/view/pinyin_order.h"
#include "widgets/dialog_template.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kByCategory = 1007;
constexpr int kByMaker = 1008;
constexpr int kCategoryList = 1004;
constexpr int kMakerList = 1005;
constexpr int kGridFrame = 1003;
constexpr int kGrid = 102;

const DialogControl kTemplate[] = {
    {kByCategory, ControlKind::RadioButton, u"按光源类型显示", {28, 11, 70, 10}},
    {kCategoryList, ControlKind::DropDownList, u"", {100, 10, 100, 12}},
    {kByMaker, ControlKind::RadioButton, u"按厂家显示", {260, 11, 54, 10}},
    {kMakerList, ControlKind::DropDownList, u"", {316, 10, 100, 12}},
    {kGridFrame, ControlKind::Frame, u"", {7, 30, 456, 203}},
};

const CString kCaption = u"光源库"_s;

// In the kept edits.
const CString kByMakerKey = u"byMaker"_s;
const CString kSliceKey = u"slice"_s;
const CString kRecordsKey = u"records"_s;

bool IsBlank(const tagLAMPHOUSEINFO& record) {
    return record.ID == 0 && record.LamphouseName.isEmpty() && record.LamphouseModel.isEmpty() &&
           record.LuminousFlux == 0 && record.LamphousePower == 0;
}

}  // namespace

CQuorvaneLamphouseDlg::CQuorvaneLamphouseDlg(CLightingDatabase& database, ReferenceLists& lists,
                                             QWidget* parent)
    : CPage(parent), m_database(database), m_lists(lists), m_grid(*this, m_records, Rules()) {
    CreateControls(this, kTemplate);
    m_byCategory = DialogItem<QRadioButton>(this, kByCategory);
    m_byMaker = DialogItem<QRadioButton>(this, kByMaker);
    m_categories = DialogItem<CEaseComboBox>(this, kCategoryList);
    m_makers = DialogItem<CEaseComboBox>(this, kMakerList);
    m_categories->SetOrder(PinyinLess);
    m_makers->SetOrder(PinyinLess);
    NameForReaders(*m_categories, m_byCategory->text());
    NameForReaders(*m_makers, m_byMaker->text());
    FillCategoryList();
    m_grid.Create(kGrid, DialogItem(this, kGridFrame)->geometry(), SharesOf::WindowWidth);
    m_grid.Fill();
    ShowMode(Mode::ByCategory);

    connect(m_byCategory, &QRadioButton::clicked, this, [this] { ChooseMode(Mode::ByCategory); });
    connect(m_byMaker, &QRadioButton::clicked, this, [this] { ChooseMode(Mode::ByMaker); });
    connect(m_categories, &CEaseComboBox::DropDown, this,
            [this] { m_lastCategory = ChosenEntry(*m_categories); });
    connect(m_makers, &CEaseComboBox::DropDown, this, [this] {
        m_lastMaker = ChosenEntry(*m_makers);
        CompleteMakerList();
    });
    connect(m_categories, &CEaseComboBox::SelectionChanged, this,
            [this] { ChangeFilter(*m_categories, m_lastCategory); });
    connect(m_makers, &CEaseComboBox::SelectionChanged, this,
            [this] { ChangeFilter(*m_makers, m_lastMaker); });
    // Sorting out the makers of a large file takes longer than everything else here.
    AfterFirstPaint(*this, [this] { FillMakerList(); });
}

CQuorvaneLamphouseDlg::~CQuorvaneLamphouseDlg() = default;

// ---- Columns

RecordGridRules<tagLAMPHOUSEINFO> CQuorvaneLamphouseDlg::Rules() {
    using Record = tagLAMPHOUSEINFO;
    return {
        .caption = kCaption,
        .columns =
            {
                NumberColumn<Record>(0.06),
                {.heading = u"光源类别",
                 .help = u"光源所属的类别",
                 .share = 0.14,
                 .show = [this](const Record& record) { return m_lists.CategoryName(record.LamphouseType); },
                 .take = [this](const CString& text, Record& record) { TakeCategory(text, record); },
                 .setup =
                     [this](const Record&) {
                         return CellSetup{.kind = CellSetup::DropDown, .choices = m_categoryChoices};
                     }},
                TextColumn(u"名    称", u"光源的名称,不要用冒号和逗号。灯具按“名称:型号”引用光源。", 0.24,
                           &Record::LamphouseName, kLeftEllipsis),
                TextColumn(u"光源型号", u"光源的型号,不要用逗号", 0.24, &Record::LamphouseModel,
                           kLeftEllipsis),
                RealColumn(u"光通量", u"单只光源的光通量\n单位:lm", 0.1, &Record::LuminousFlux),
                RealColumn(
                    u"功  率",
                    u"单只光源的功率,不含镇流器和变压器;LED光源含驱动电源,自镇流荧光灯含镇流器\n单位:W", 0.1,
                    &Record::LamphousePower),
                TextColumn(u"厂    家", u"光源的厂家", 0.1, &Record::Factory,
                           kCentred | CellFormat::EndEllipsis),
            },
        .title = [](const Record& record) { return record.LamphouseName; },
        .isBlank = IsBlank,
        .makeBlank = [this] { return MakeBlank(); },
        .edited = [this] { Q_EMIT EditsChanged(); },
        .slice = [this] { return (m_mode == Mode::ByCategory ? m_categories : m_makers)->currentText(); }};
}

tagLAMPHOUSEINFO CQuorvaneLamphouseDlg::MakeBlank() {
    tagLAMPHOUSEINFO blank;
    CString category = m_categories->currentText();
    if (category.isEmpty() && !m_categoryChoices->empty()) {
        category = m_categoryChoices->front();
    }
    blank.LamphouseType = m_lists.CategoryId(category);
    blank.Factory = m_makers->currentText();
    return blank;
}

// Two categories may have the same name: the name of the present category does not change the category. Nor
// does a name that is in the file no more.
void CQuorvaneLamphouseDlg::TakeCategory(const CString& name, tagLAMPHOUSEINFO& record) {
    if (name != m_lists.CategoryName(record.LamphouseType)) {
        const int id = m_lists.CategoryId(name);
        record.LamphouseType = id == 0 ? record.LamphouseType : id;
    }
}

// ---- Lists

void CQuorvaneLamphouseDlg::FillCategoryList() {
    for (const CString& name : m_lists.LightSourceCategoryNames()) {
        m_categories->AddString(name);
    }
    m_categoryChoices = std::make_shared<const std::vector<CString>>(m_categories->Strings());
    if (!m_lists.HasAllCategories()) {
        TellIncompleteLoadSoon(this, kCaption);
    }
}

void CQuorvaneLamphouseDlg::FillMakerList() {
    if (!m_isMakerListFilled && !CompleteMakerList()) {
        TellIncompleteLoad(this, kCaption);
    }
}

// Adds the makers that have been stored since the list was filled. No maker is ever removed. False when not
// all makers could be read.
bool CQuorvaneLamphouseDlg::CompleteMakerList() {
    m_isMakerListFilled = true;
    std::vector<CString> makers;
    const bool complete = m_database.LoadLightSourceFactories(makers);
    const std::vector<CString> listed = m_makers->Strings();
    const std::set<CString> held(listed.begin(), listed.end());
    for (const CString& maker : makers) {
        if (!held.contains(maker)) {
            m_makers->AddString(maker);
        }
    }
    return complete;
}

// ---- What is shown

void CQuorvaneLamphouseDlg::ShowMode(Mode mode) {
    m_mode = mode;
    const bool byCategory = mode == Mode::ByCategory;
    m_byCategory->setChecked(byCategory);
    m_byMaker->setChecked(!byCategory);
    m_categories->setEnabled(byCategory);
    m_makers->setEnabled(!byCategory);
}

void CQuorvaneLamphouseDlg::ChooseMode(Mode mode) {
    if (mode == m_mode) {
        return;
    }
    if (!SettleChanges()) {
        ShowMode(m_mode);
        return;
    }
    FillMakerList();
    ShowMode(mode);
    (mode == Mode::ByCategory ? m_makers : m_categories)->ClearSelection();
    (mode == Mode::ByCategory ? m_lastMaker : m_lastCategory) = QPersistentModelIndex();
    m_records.TakeLoaded({});
    m_grid.Fill();
}

void CQuorvaneLamphouseDlg::Reload() {
    const CEaseComboBox& list = m_mode == Mode::ByCategory ? *m_categories : *m_makers;
    if (list.currentIndex() >= 0 && SettleChanges()) {
        m_lists.Invalidate();
        Load();
    }
}

bool CQuorvaneLamphouseDlg::SettleChanges() {
    return m_grid.SettleChanges([this] {
        Submit();
        return !m_records.HasUnwritten();
    });
}

void CQuorvaneLamphouseDlg::ChangeFilter(CEaseComboBox& list, QPersistentModelIndex& last) {
    if (SettleChoice(list, last, [this] { return SettleChanges(); })) {
        Load();
    }
}

void CQuorvaneLamphouseDlg::Load() {
    const bool byCategory = m_mode == Mode::ByCategory;
    std::vector<tagLAMPHOUSEINFO> records;
    const bool complete = byCategory
                              ? m_database.LoadLightSourcesByTypeName(m_categories->currentText(), records)
                              : m_database.LoadLightSourcesByFactory(m_makers->currentText(), records);
    m_records.TakeLoaded(std::move(records));
    m_grid.Fill();
    if (!complete) {
        TellIncompleteLoad(this, kCaption, m_database.LastFailure());
    }
}

// ---- Kept edits

std::function<QCborMap()> CQuorvaneLamphouseDlg::KeepEdits() const {
    const bool byMaker = m_mode == Mode::ByMaker;
    return [edits = EditsOf(m_records), byMaker, slice = (byMaker ? m_makers : m_categories)->currentText()] {
        return QCborMap{{kByMakerKey, byMaker}, {kSliceKey, slice}, {kRecordsKey, ToCbor(edits)}};
    };
}

QStringList CQuorvaneLamphouseDlg::MakeEditsAgain(const QCborMap& kept) {
    const bool byMaker = kept[kByMakerKey].toBool();
    const CString slice = kept[kSliceKey].toString();
    ChooseMode(byMaker ? Mode::ByMaker : Mode::ByCategory);
    FillMakerList();
    CEaseComboBox& list = byMaker ? *m_makers : *m_categories;
    if (!slice.isEmpty() && list.Holds(slice)) {
        list.SelectString(slice);
        (byMaker ? m_lastMaker : m_lastCategory) = ChosenEntry(list);
        Load();
    }
    return quorvane::MakeEditsAgain(
        kept[kRecordsKey], m_records, m_grid,
        {[this](std::vector<tagLAMPHOUSEINFO>& all) { return m_database.LoadAllLightSources(all); }});
}

// ---- Storing

bool CQuorvaneLamphouseDlg::Submit() {
    const RecordStatements<tagLAMPHOUSEINFO> statements = {
        .isBlank = IsBlank,
        .insert = [this](tagLAMPHOUSEINFO& record) { return m_database.InsertLightSource(record); },
        .update = [this](tagLAMPHOUSEINFO& record) { return m_database.UpdateLightSource(record); },
        .remove = [this](int id) { return m_database.DeleteLightSource(id); },
        .cause = [this] { return WriteFailure{m_database.LastFailure()}; }};
    RunSubmit(
        this, kCaption, m_database,
        {.write = [&](const ProgressCallback& progress) { return m_records.Submit(statements, progress); },
         .compare = [this](SubmitFailures& failures) { Compare(failures); }});
    m_lists.Invalidate();
    return true;
}

// A light source that has got another category or maker has left what is shown.
void CQuorvaneLamphouseDlg::Compare(SubmitFailures& failures) {
    using Record = tagLAMPHOUSEINFO;
    StoredRecords<Record> byCategory([](const Record& record) { return FormatInteger(record.LamphouseType); },
                                     [this](const CString& category, std::vector<Record>& records) {
                                         return m_database.LoadLightSourcesByType(ToInteger(category),
                                                                                  records);
                                     });
    StoredRecords<Record> byMaker([](const Record& record) { return record.Factory; },
                                  [this](const CString& maker, std::vector<Record>& records) {
                                      return m_database.LoadLightSourcesByFactory(maker, records);
                                  });
    m_records.Compare(m_mode == Mode::ByCategory ? byCategory : byMaker, IsBlank, failures);
}

}  // namespace quorvane
