#include "editors/light_source_page.h"

#include <QRadioButton>
#include <algorithm>

#include "data/number_text.h"
#include "grid/cells/btn_data_base.h"
#include "model/light_source_categories.h"
#include "widgets/dialog_template.h"

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
    {kCategoryList, ControlKind::SortedDropDownList, u"", {100, 10, 100, 12}},
    {kByMaker, ControlKind::RadioButton, u"按厂家显示", {260, 11, 54, 10}},
    {kMakerList, ControlKind::SortedDropDownList, u"", {316, 10, 100, 12}},
    {kGridFrame, ControlKind::Frame, u"", {7, 30, 456, 203}},
};

enum Column { Number, Category, Name, Model, Flux, Power, Maker };

const GridColumn kColumns[] = {
    {u"序号", 0.06},  {u"光源类别", 0.14}, {u"名    称", 0.24}, {u"光源型号", 0.24},
    {u"光通量", 0.1}, {u"功  率", 0.1},    {u"厂    家", 0.1},
};

}  // namespace

CQuorvaneLamphouseDlg::CQuorvaneLamphouseDlg(CLightingDatabase& database, QWidget* parent)
    : RecordPage(QStringLiteral("光源库"), parent),
      m_database(database),
      m_buttons(std::make_unique<CBtnDataBase>()) {
    CreateControls(this, kTemplate);
    m_byCategory = DialogItem<QRadioButton>(this, kByCategory);
    m_byMaker = DialogItem<QRadioButton>(this, kByMaker);
    m_categories = DialogItem<CEaseComboBox>(this, kCategoryList);
    m_makers = DialogItem<CEaseComboBox>(this, kMakerList);
    m_categories->setAccessibleName(m_byCategory->text());
    m_makers->setAccessibleName(m_byMaker->text());
    const bool categoriesWhole = FillCategoryList();
    const bool makersWhole = CompleteMakerList();
    if (!categoriesWhole || !makersWhole) {
        TellIncompleteLoadSoon();
    }
    CreateGrid(kGrid, DialogItem(this, kGridFrame)->geometry(), kColumns);
    FillGrid();
    ShowMode(Mode::ByCategory);

    connect(m_byCategory, &QRadioButton::clicked, this, [this] { ChooseMode(Mode::ByCategory); });
    connect(m_byMaker, &QRadioButton::clicked, this, [this] { ChooseMode(Mode::ByMaker); });
    connect(m_categories, &CEaseComboBox::DropDown, this,
            [this] { m_lastCategory = m_categories->currentText(); });
    connect(m_makers, &CEaseComboBox::DropDown, this, [this] {
        m_lastMaker = m_makers->currentText();
        CompleteMakerList();
    });
    connect(m_categories, &CEaseComboBox::SelectionChanged, this,
            [this] { ChangeFilter(m_categories, m_lastCategory); });
    connect(m_makers, &CEaseComboBox::SelectionChanged, this,
            [this] { ChangeFilter(m_makers, m_lastMaker); });
}

CQuorvaneLamphouseDlg::~CQuorvaneLamphouseDlg() = default;

bool CQuorvaneLamphouseDlg::FillCategoryList() {
    std::vector<tagLAMPHOUSETYPE> types;
    const bool whole = m_database.LoadLampTypes(types);
    for (const tagLAMPHOUSETYPE& type : types) {
        m_categoryNames.emplace(type.ID, type.LamphouseType);
        if (type.LamphouseType != kMixedLight && type.LamphouseType != kCommonLuminaires) {
            m_categories->AddString(type.LamphouseType);
        }
    }
    m_categoryChoices = std::make_shared<const std::vector<CString>>(m_categories->Strings());
    return whole;
}

// Makers stored since the list was filled join it; none ever leaves.
bool CQuorvaneLamphouseDlg::CompleteMakerList() {
    std::vector<CString> makers;
    const bool whole = m_database.LoadLightSourceFactories(makers);
    for (const CString& maker : makers) {
        if (!m_makers->Holds(maker)) {
            m_makers->AddString(maker);
        }
    }
    return whole;
}

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
    ShowMode(mode);
    (mode == Mode::ByCategory ? m_makers : m_categories)->ClearSelection();
    (mode == Mode::ByCategory ? m_lastMaker : m_lastCategory).clear();
    Working().BeginLoad().clear();
    FillGrid();
}

void CQuorvaneLamphouseDlg::ChangeFilter(CEaseComboBox* list, CString& lastText) {
    if (SettleChoice(*list, lastText)) {
        Load();
    }
}

void CQuorvaneLamphouseDlg::Load() {
    std::vector<tagLAMPHOUSEINFO>& records = Working().BeginLoad();
    const bool whole = m_mode == Mode::ByCategory
                           ? m_database.LoadLightSourcesByTypeName(m_categories->currentText(), records)
                           : m_database.LoadLightSourcesByFactory(m_makers->currentText(), records);
    FillGrid();
    if (!whole) {
        (m_mode == Mode::ByCategory ? m_categories : m_makers)->ForgetChoice();
        TellIncompleteLoad();
    }
}

void CQuorvaneLamphouseDlg::WriteRow(int row, const tagLAMPHOUSEINFO& record) {
    const CString category = CategoryName(record.LamphouseType);
    SetUpComboCell(Grid(), *m_buttons, row, Category, m_categoryChoices, category);
    Grid().SetItemText(row, Category, category);  // also one that is not among the choices
    WriteCell(row, Name, record.LamphouseName, kLeft);
    WriteCell(row, Model, record.LamphouseModel, kLeft);
    WriteCell(row, Flux, FormatReal(record.LuminousFlux), kCentred);
    WriteCell(row, Power, FormatReal(record.LamphousePower), kCentred);
    WriteCell(row, Maker, record.Factory, kCentred);
}

void CQuorvaneLamphouseDlg::WriteAppendRow(int row) {
    SetUpComboCell(Grid(), *m_buttons, row, Category, m_categoryChoices, m_categories->currentText());
    WriteCell(row, Name, {}, kLeft);
    WriteCell(row, Model, {}, kLeft);
    WriteCell(row, Flux, FormatReal(0), kCentred);
    WriteCell(row, Power, FormatReal(0), kCentred);
    WriteCell(row, Maker, m_makers->currentText(), kCentred);
}

void CQuorvaneLamphouseDlg::ReadCell(int row, int column, tagLAMPHOUSEINFO& record) {
    const CString text = Grid().GetItemText(row, column);
    switch (column) {
        case Category:
            record.LamphouseType = CategoryId(text, record.LamphouseType);
            break;
        case Name:
            record.LamphouseName = text;
            break;
        case Model:
            record.LamphouseModel = text;
            break;
        case Flux:
            record.LuminousFlux = ReadReal(row, column, record.LuminousFlux);
            break;
        case Power:
            record.LamphousePower = ReadReal(row, column, record.LamphousePower);
            break;
        case Maker:
            record.Factory = text;
            break;
        default:
            break;
    }
}

bool CQuorvaneLamphouseDlg::IsBlank(const tagLAMPHOUSEINFO& record) const {
    return record.ID == 0 && record.LamphouseName.isEmpty() && record.LamphouseModel.isEmpty() &&
           record.LuminousFlux == 0 && record.LamphousePower == 0;
}

CString CQuorvaneLamphouseDlg::CategoryName(int categoryId) {
    const auto known = m_categoryNames.find(categoryId);
    if (known != m_categoryNames.end()) {
        return known->second;
    }
    CString name;
    if (m_database.GetLampTypeName(categoryId, name)) {
        m_categoryNames.emplace(categoryId, name);
    }
    return name;
}

// A name that is the present category's own leaves the category as it is: two may bear the same name. When
// the database does not know it or does not answer, the categories read earlier do.
int CQuorvaneLamphouseDlg::CategoryId(const CString& name, int present) {
    if (CategoryName(present) == name) {
        return present;
    }
    int id = 0;
    if (m_database.FindLampTypeID(name, id) && id != 0) {
        return id;
    }
    const auto known = std::find_if(m_categoryNames.begin(), m_categoryNames.end(),
                                    [&name](const auto& entry) { return entry.second == name; });
    return known == m_categoryNames.end() ? present : known->first;
}

}  // namespace quorvane
