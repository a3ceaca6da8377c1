#include "editors/requirement_page.h"

#include <QHeaderView>
#include <QSignalBlocker>
#include <QTreeWidget>

#include "data/number_text.h"
#include "widgets/dialog_template.h"

namespace quorvane {
namespace {

constexpr int kTree = 1017;
constexpr int kGridFrame = 1021;
constexpr int kGrid = 101;

const DialogControl kTemplate[] = {
    {kTree, ControlKind::TreeView, u"", {7, 7, 80, 226}},
    {kGridFrame, ControlKind::Frame, u"", {93, 7, 370, 226}},
};

enum Column { Number, Location, Plane, ActualLPD, ObjectiveLPD, Illuminance, UGR, Ra };

const GridColumn kColumns[] = {
    {u"序号", 0.08},         {u"场所", 0.2},        {u"参考平面", 0.16},   {u"现行功率密度", 0.16},
    {u"目标功率密度", 0.16}, {u"照度标准值", 0.14}, {u"统一眩光值", 0.14}, {u"显色指数", 0.12},
};

}  // namespace

CQuorvaneDemandDlg::CQuorvaneDemandDlg(CLightingDatabase& database, QWidget* parent)
    : RecordPage(QStringLiteral("照度要求"), parent), m_database(database) {
    CreateControls(this, kTemplate);
    m_tree = DialogItem<QTreeWidget>(this, kTree);
    m_tree->setAccessibleName(QStringLiteral("行业和建筑类型"));
    m_tree->setHeaderHidden(true);
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    CreateGrid(kGrid, DialogItem(this, kGridFrame)->geometry(), kColumns);
    FillTree();
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this,
            [this] { ChangeBuildingType(m_tree->selectedItems().value(0)); });
}

void CQuorvaneDemandDlg::FillTree() {
    std::vector<CString> vocations;
    bool whole = m_database.LoadVocations(vocations);
    for (const CString& vocation : vocations) {
        auto* trade = new QTreeWidgetItem(m_tree, {vocation});
        std::vector<CString> buildingTypes;
        whole = m_database.LoadBuildingTypes(vocation, buildingTypes) && whole;
        for (const CString& buildingType : buildingTypes) {
            new QTreeWidgetItem(trade, {buildingType});
        }
    }
    if (!whole) {
        TellIncompleteLoadSoon();
    }
}

// A trade itself has no parent: its rows are asked for with an empty trade and match none.
void CQuorvaneDemandDlg::ChangeBuildingType(QTreeWidgetItem* item) {
    if (!SettleChanges()) {
        const QSignalBlocker blocker(m_tree);
        m_tree->setCurrentItem(m_shownItem);
        return;
    }
    m_shownItem = item;
    const QTreeWidgetItem* trade = item == nullptr ? nullptr : item->parent();
    m_vocation = trade == nullptr ? CString() : trade->text(0);
    m_buildingType = item == nullptr ? CString() : item->text(0);
    m_isBuildingTypeShown = trade != nullptr;
    const bool whole = m_database.LoadIlluminanceStandards(m_vocation, m_buildingType, Working().BeginLoad());
    // A grid that could not be refreshed still shows other rows: nothing may be typed there.
    Grid().setEnabled(whole);
    if (whole) {
        FillGrid();
    } else {
        TellIncompleteLoad();
    }
}

void CQuorvaneDemandDlg::WriteRow(int row, const tagILLUMINANCESTANDARD& record) {
    WriteCell(row, Location, record.Location, kLeft | CellFormat::EndEllipsis);
    WriteCell(row, Plane, record.ReferencePlane, kCentred);
    WriteCell(row, ActualLPD, FormatReal(record.ActualLPD), kCentred);
    WriteCell(row, ObjectiveLPD, FormatReal(record.ObjectiveLPD), kCentred);
    WriteCell(row, Illuminance, FormatInteger(record.IlluminanceStandard), kCentred);
    WriteCell(row, UGR, FormatInteger(record.UGR), kCentred);
    WriteCell(row, Ra, FormatInteger(record.Ra), kCentred);
}

void CQuorvaneDemandDlg::WriteAppendRow(int row) {
    WriteRow(row, {});
    for (const int column : {Illuminance, UGR}) {
        Grid().SetItemFormat(row, column, kCentred | CellFormat::EndEllipsis);
    }
}

void CQuorvaneDemandDlg::ReadCell(int row, int column, tagILLUMINANCESTANDARD& record) {
    switch (column) {
        case Location:
            record.Location = Grid().GetItemText(row, column);
            break;
        case Plane:
            record.ReferencePlane = Grid().GetItemText(row, column);
            break;
        case ActualLPD:
            record.ActualLPD = ReadReal(row, column, record.ActualLPD);
            break;
        case ObjectiveLPD:
            record.ObjectiveLPD = ReadReal(row, column, record.ObjectiveLPD);
            break;
        case Illuminance:
            record.IlluminanceStandard = ReadInteger(row, column);
            break;
        case UGR:
            record.UGR = ReadInteger(row, column);
            break;
        case Ra:
            record.Ra = ReadInteger(row, column);
            break;
        default:
            break;
    }
    record.Vocation = m_vocation;
    record.BuildingType = m_buildingType;
}

bool CQuorvaneDemandDlg::IsBlank(const tagILLUMINANCESTANDARD& record) const {
    return record.ID == 0 && record.Location.isEmpty() && record.ReferencePlane.isEmpty() &&
           record.ActualLPD == 0 && record.ObjectiveLPD == 0 && record.IlluminanceStandard == 0 &&
           record.UGR == 0 && record.Ra == 0;
}

bool CQuorvaneDemandDlg::Insert(tagILLUMINANCESTANDARD& record) {
    return m_database.InsertIlluminanceStandard(record);
}

bool CQuorvaneDemandDlg::Update(tagILLUMINANCESTANDARD& record) {
    return m_database.UpdateIlluminanceStandard(record);
}

bool CQuorvaneDemandDlg::Delete(int id) {
    return m_database.DeleteIlluminanceStandard(id);
}

}  // namespace quorvane
