#include "editors/requirement_page.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <utility>

#include "editors/kept_records.h"
#include "editors/submit.h"
#include "widgets/dialog_template.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kTree = 1017;
constexpr int kGridFrame = 1021;
constexpr int kGrid = 101;

const DialogControl kTemplate[] = {
    {kTree, ControlKind::TreeView, u"", {7, 7, 80, 226}},
    {kGridFrame, ControlKind::Frame, u"", {93, 7, 370, 226}},
};

const CString kCaption = u"照度要求"_s;

// In the kept edits.
const CString kVocationKey = u"vocation"_s;
const CString kBuildingKey = u"buildingType"_s;
const CString kRowsKey = u"records"_s;

bool IsBlank(const tagILLUMINANCESTANDARD& record) {
    return record.ID == 0 && record.Location.isEmpty() && record.ReferencePlane.isEmpty() &&
           record.ActualLPD == 0 && record.ObjectiveLPD == 0 && record.IlluminanceStandard == 0 &&
           record.UGR == 0 && record.Ra == 0;
}

}  // namespace

CQuorvaneDemandDlg::CQuorvaneDemandDlg(CLightingDatabase& database, QWidget* parent)
    : CPage(parent), m_database(database), m_grid(*this, m_records, Rules()) {
    CreateControls(this, kTemplate);
    m_tree = DialogItem<QTreeWidget>(this, kTree);
    m_tree->setAccessibleName(u"行业和建筑类型"_s);
    m_tree->setHeaderHidden(true);
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_grid.Create(kGrid, DialogItem(this, kGridFrame)->geometry(), SharesOf::WindowWidth);
    m_grid.SetHasAppendRow(false);
    FillTree();
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, [this] {
        m_isChosenByPress = QGuiApplication::mouseButtons() != Qt::NoButton;
        ChangeBuildingType(m_tree->selectedItems().value(0));
    });
    // A click on the building type that is shown loads it again.
    connect(m_tree, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
        if (!std::exchange(m_isChosenByPress, false) && item == m_shownItem) {
            ChangeBuildingType(item);
        }
    });
}

RecordGridRules<tagILLUMINANCESTANDARD> CQuorvaneDemandDlg::Rules() {
    using Record = tagILLUMINANCESTANDARD;
    return {.caption = kCaption,
            .columns =
                {
                    NumberColumn<Record>(0.08),
                    TextColumn(u"场所", u"房间或场所", 0.2, &Record::Location, kLeftEllipsis),
                    TextColumn(u"参考平面", u"规定照度的平面及其高度,如0.75m水平面", 0.16,
                               &Record::ReferencePlane),
                    RealColumn(
                        u"现行功率密度",
                        u"照明功率密度(LPD)的现行值:单位面积照明安装功率的限值,含镇流器和变压器\n单位:W/m²",
                        0.16, &Record::ActualLPD),
                    RealColumn(
                        u"目标功率密度",
                        u"照明功率密度(LPD)的目标值:单位面积照明安装功率的限值,含镇流器和变压器\n单位:W/m²",
                        0.16, &Record::ObjectiveLPD),
                    IntegerColumn(u"照度标准值", u"参考平面上的维持平均照度\n单位:lx", 0.14,
                                  &Record::IlluminanceStandard),
                    IntegerColumn(u"统一眩光值", u"统一眩光值(UGR)的最大允许值\n无量纲", 0.14, &Record::UGR),
                    IntegerColumn(u"显色指数", u"一般显色指数(Ra)的最小允许值\n无量纲,最大100", 0.12,
                                  &Record::Ra),
                },
            .title = [](const Record& record) { return record.Location; },
            .isBlank = IsBlank,
            .makeBlank =
                [this] {
                    Record blank;
                    blank.Vocation = m_vocation;
                    blank.BuildingType = m_buildingType;
                    return blank;
                },
            .edited = [this] { Q_EMIT EditsChanged(); },
            .slice = [this] { return m_vocation + u' ' + m_buildingType; }};
}

void CQuorvaneDemandDlg::FillTree() {
    std::vector<CString> vocations;
    bool complete = m_database.LoadVocations(vocations);
    for (const CString& vocation : vocations) {
        auto* trade = new QTreeWidgetItem(m_tree, {vocation});
        std::vector<CString> buildingTypes;
        complete = m_database.LoadBuildingTypes(vocation, buildingTypes) && complete;
        for (const CString& buildingType : buildingTypes) {
            new QTreeWidgetItem(trade, {buildingType});
        }
    }
    if (!complete) {
        TellIncompleteLoadSoon(this, kCaption);
    }
}

// A trade itself has no parent item: its rows are loaded with an empty trade, which no row has.
void CQuorvaneDemandDlg::ChangeBuildingType(QTreeWidgetItem* item) {
    const bool settled = m_grid.SettleChanges([this] {
        Submit();
        return !m_records.HasUnwritten();
    });
    if (!settled) {
        const QSignalBlocker blocker(m_tree);
        m_tree->setCurrentItem(m_shownItem);
        return;
    }
    m_shownItem = item;
    const QTreeWidgetItem* trade = item == nullptr ? nullptr : item->parent();
    m_vocation = trade == nullptr ? CString() : trade->text(0);
    m_buildingType = item == nullptr ? CString() : item->text(0);
    m_grid.SetHasAppendRow(trade != nullptr);
    std::vector<tagILLUMINANCESTANDARD> records;
    const bool complete = m_database.LoadIlluminanceStandards(m_vocation, m_buildingType, records);
    m_records.TakeLoaded(std::move(records));
    // After a failed load the grid still shows the former rows: nothing may be typed there.
    m_grid.Control().setEnabled(complete);
    if (complete) {
        m_grid.Fill();
    } else {
        TellIncompleteLoad(this, kCaption, m_database.LastFailure());
    }
}

void CQuorvaneDemandDlg::Reload() {
    if (m_shownItem != nullptr) {
        ChangeBuildingType(m_shownItem);
    }
}

// ---- Kept edits

std::function<QCborMap()> CQuorvaneDemandDlg::KeepEdits() const {
    return [edits = EditsOf(m_records), vocation = m_vocation, building = m_buildingType] {
        return QCborMap{{kVocationKey, vocation}, {kBuildingKey, building}, {kRowsKey, ToCbor(edits)}};
    };
}

QStringList CQuorvaneDemandDlg::MakeEditsAgain(const QCborMap& kept) {
    QTreeWidgetItem* place = m_tree->invisibleRootItem();
    for (const CString& name : {kept[kVocationKey].toString(), kept[kBuildingKey].toString()}) {
        for (int child = 0; !name.isEmpty() && child < place->childCount(); ++child) {
            if (place->child(child)->text(0) == name) {
                place = place->child(child);
                break;
            }
        }
    }
    if (place != m_tree->invisibleRootItem()) {
        m_tree->setCurrentItem(place);
    }
    return quorvane::MakeEditsAgain(
        kept[kRowsKey], m_records, m_grid,
        {[this](std::vector<tagILLUMINANCESTANDARD>& all) { return LoadAll(all); }});
}

bool CQuorvaneDemandDlg::LoadAll(std::vector<tagILLUMINANCESTANDARD>& all) {
    std::vector<CString> vocations;
    bool isWhole = m_database.LoadVocations(vocations);
    for (const CString& vocation : vocations) {
        std::vector<CString> buildingTypes;
        isWhole = m_database.LoadBuildingTypes(vocation, buildingTypes) && isWhole;
        for (const CString& buildingType : buildingTypes) {
            std::vector<tagILLUMINANCESTANDARD> records;
            isWhole = m_database.LoadIlluminanceStandards(vocation, buildingType, records) && isWhole;
            all.insert(all.end(), records.begin(), records.end());
        }
    }
    return isWhole;
}

// ---- Storing

bool CQuorvaneDemandDlg::Submit() {
    using Record = tagILLUMINANCESTANDARD;
    const RecordStatements<Record> statements = {
        .isBlank = IsBlank,
        .insert = [this](Record& record) { return m_database.InsertIlluminanceStandard(record); },
        .update = [this](Record& record) { return m_database.UpdateIlluminanceStandard(record); },
        .remove = [this](int id) { return m_database.DeleteIlluminanceStandard(id); },
        .cause = [this] { return WriteFailure{m_database.LastFailure()}; }};
    StoredRecords<Record> file([](const Record& record) { return record.BuildingType; },
                               [this](const CString& buildingType, std::vector<Record>& records) {
                                   return m_database.LoadIlluminanceStandards(m_vocation, buildingType,
                                                                              records);
                               });
    RunSubmit(
        this, kCaption, m_database,
        {.write = [&](const ProgressCallback& progress) { return m_records.Submit(statements, progress); },
         .compare = [&](SubmitFailures& failures) { m_records.Compare(file, IsBlank, failures); }});
    return true;
}

}  // namespace quorvane
