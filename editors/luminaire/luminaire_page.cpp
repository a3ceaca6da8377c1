#include "editors/luminaire/luminaire_page.h"

#include <QKeyEvent>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "data/number_text.h"
#include "data/text_format.h"
#include "editors/factor_table/factor_table_dialog.h"
#include "editors/luminaire/luminaire_columns.h"
#include "editors/luminaire/mixed_light_source_dialog.h"
#include "editors/photo/photo_dialog.h"
#include "grid/cells/btn_data_base.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"
#include "widgets/dialog_template.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"

namespace quorvane {

using namespace luminaire_columns;

namespace {

constexpr int kFilterLabel = 1007;
constexpr int kFilter = 1006;
constexpr int kGridFrame = 1005;
constexpr int kCopy = 1022;
constexpr int kPaste = 1023;
constexpr int kGrid = 101;

const DialogControl kTemplate[] = {
    {kFilterLabel, ControlKind::Label, u"灯具类型:", {28, 11, 44, 10}},
    {kFilter, ControlKind::DropDownList, u"", {74, 10, 126, 12}},
    {kCopy, ControlKind::PushButton, u"复制", {318, 8, 44, 16}},
    {kPaste, ControlKind::PushButton, u"粘贴", {372, 8, 44, 16}},
    {kGridFrame, ControlKind::Frame, u"", {7, 30, 456, 203}},
};

const GridColumn kColumns[] = {
    {u"序号", 0.06},     {u"灯具名称", 0.2},      {u"灯具型号", 0.15},   {u"灯具效率", 0.1},
    {u"A-A", 0.06},      {u"B-B", 0.06},          {u"灯具类别", 0.2},    {u"默认光源", 0.2},
    {u"光源个数", 0.09}, {u"镇流器数", 0.09},     {u"镇流器功率", 0.11}, {u"厂  家", 0.1},
    {u"灯具图片", 0.1},  {u"利用系数类别", 0.12}, {u"利用系数表", 0.11},
};

const CString kRoomIndex = QStringLiteral("RI");
const CString kRoomCavityRatio = QStringLiteral("RCR");

// The rule as every program that reads the database applies it, to the letter.
bool IsMixedLight(const CString& categoryIds) {
    return categoryIds.contains(u'5');
}

// What an append row that nobody has touched reads as.
tagLUMINAIREINFO BlankLuminaire() {
    tagLUMINAIREINFO blank;
    blank.LamphouseCount = QStringLiteral("0");
    return blank;
}

CString FactorKindText(const tagLUMINAIREINFO& luminaire) {
    return luminaire.UtilizationFactorType == 1 ? kRoomIndex : kRoomCavityRatio;
}

// The keys that open every cell with a drop-down list.
bool OpensDropDown(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    switch (event.key()) {
        case Qt::Key_F2:
        case Qt::Key_F4:
        case Qt::Key_Space:
            return modifiers == Qt::NoModifier;
        case Qt::Key_Down:
            return modifiers == Qt::AltModifier;
        default:
            return false;
    }
}

CellChoices FactorKinds() {
    static const auto kinds =
        std::make_shared<const std::vector<CString>>(std::vector<CString>{kRoomCavityRatio, kRoomIndex});
    return kinds;
}

}  // namespace

CQuorvaneLuminaireDlg::CQuorvaneLuminaireDlg(CLightingDatabase& database, QWidget* parent)
    : RecordPage(QStringLiteral("灯具库"), parent),
      m_database(database),
      m_lists(database),
      m_photos(database.GetApplicationParentFolder()),
      m_buttons(std::make_unique<CBtnDataBase>()),
      m_chooser(std::make_unique<CLamphouseTypeChoiceWindow>(this)) {
    CreateControls(this, kTemplate);
    auto* copy = static_cast<CImageButton*>(DialogItem(this, kCopy));
    auto* paste = static_cast<CImageButton*>(DialogItem(this, kPaste));
    copy->SetImage(IconId::Copy, QStringLiteral("复制数据"));
    paste->SetImage(IconId::Paste, QStringLiteral("粘贴数据"));
    m_paste = paste;
    m_copied.luminaire = BlankLuminaire();
    EnablePaste();

    m_filter = DialogItem<CEaseComboBox>(this, kFilter);
    m_filter->setAccessibleName(QStringLiteral("灯具类型"));
    std::vector<tagLAMPHOUSETYPE> types;
    if (!m_database.LoadLampTypes(types)) {
        TellIncompleteLoadSoon();
    }
    for (const tagLAMPHOUSETYPE& type : types) {
        m_filter->AddString(type.LamphouseType);
    }
    m_chooser->SetTypeNames(m_filter->Strings());
    m_lists.SetCategories(std::move(types));

    CreateGrid(kGrid, DialogItem(this, kGridFrame)->geometry(), kColumns, SharesOf::ClientWidth);
    Grid().installEventFilter(this);
    FillGrid();

    connect(m_filter, &CEaseComboBox::SelectionChanged, this, &CQuorvaneLuminaireDlg::ChangeFilter);
    connect(copy, &QPushButton::clicked, this, &CQuorvaneLuminaireDlg::Copy);
    connect(paste, &QPushButton::clicked, this, &CQuorvaneLuminaireDlg::Paste);
    connect(&Grid(), &CGridCtrl::ButtonClicked, this,
            [this](int row, int column) { PressButton(row, column); });
    connect(&Grid(), &CGridCtrl::CellClicked, this, [this](int row, int column) {
        if (column == Categories) {
            OpenTypeChooser(row);
        }
    });
    connect(m_chooser.get(), &CLamphouseTypeChoiceWindow::Chosen, this,
            &CQuorvaneLuminaireDlg::TakeChosenTypes);
    if (m_database.GetApplicationParentFolder().isEmpty()) {
        ShowMessage(this, QStringLiteral("灯具图片库路径错误"));
    }
}

CQuorvaneLuminaireDlg::~CQuorvaneLuminaireDlg() = default;

// ---- Filter and load

CString CQuorvaneLuminaireDlg::FilterCategoryIds() {
    return m_filter->currentIndex() < 0 ? CString() : m_lists.CategoryId(m_filter->currentText());
}

void CQuorvaneLuminaireDlg::ChangeFilter() {
    if (!SettleChoice(*m_filter, m_lastFilter)) {
        return;
    }
    m_lists.Forget();
    m_luggage.clear();
    const bool whole = m_database.LoadLuminairesByType(FilterCategoryIds(), Working().BeginLoad());
    FillGrid();
    if (!whole) {
        m_filter->ForgetChoice();
    }
    if (!whole || !m_lists.IsWhole()) {
        TellIncompleteLoad();
    }
}

void CQuorvaneLuminaireDlg::Refresh() {
    m_lists.Forget();
    RecordPage::Refresh();
    if (!m_lists.IsWhole()) {
        TellIncompleteLoad();
    }
}

// Light sources may have changed on their own page.
void CQuorvaneLuminaireDlg::showEvent(QShowEvent* event) {
    RecordPage::showEvent(event);
    if (!event->spontaneous()) {
        RenewLightSourceCells();
    }
}

void CQuorvaneLuminaireDlg::RenewLightSourceCells() {
    m_lists.Forget();
    int row = 0;
    for (const tagLUMINAIREINFO& record : Working().Records()) {
        WriteLightSourceCells(++row, record);
    }
    WriteAppendRowLightSource(row + 1);
    if (!m_lists.IsWhole()) {
        TellIncompleteLoadSoon();
    }
}

// ---- Records and rows

void CQuorvaneLuminaireDlg::WriteRow(int row, const tagLUMINAIREINFO& record) {
    WriteCell(row, Name, record.LampName, kLeft | CellFormat::EndEllipsis);
    WriteCell(row, Model, record.LampModel, kLeft);
    WriteCell(row, Efficiency, FormatReal(record.LuminaireEfficiency), kCentred);
    WriteCell(row, MaxLhAA, FormatReal(record.MaxLhAA), kCentred);
    WriteCell(row, MaxLhBB, FormatReal(record.MaxLhBB), kCentred);
    WriteCell(row, Categories, m_lists.CategoryNames(record.LamphouseTypeID),
              kLeft | CellFormat::EndEllipsis);
    MarkState(row, Categories, CellState::ReadOnly | CellState::DropDown);
    WriteCell(row, LightSourceCount, record.LamphouseCount, kCentred);
    WriteLightSourceCells(row, record);
    WriteCell(row, BallastCount, FormatInteger(record.BallastCount), kCentred);
    WriteCell(row, BallastPower, FormatReal(record.BallastPower), kCentred);
    WriteCell(row, Maker, record.Factory, kCentred);
    WriteCell(row, Photo, record.LampPhoto, kLeft | CellFormat::EndEllipsis);
    SetUpButtonCell(Grid(), *m_buttons, row, Photo, QStringLiteral(">>>"));
    SetUpComboCell(Grid(), *m_buttons, row, FactorKind, FactorKinds(), FactorKindText(record));
    SetUpButtonCell(Grid(), *m_buttons, row, FactorTable, QStringLiteral("利用系数表"));
}

void CQuorvaneLuminaireDlg::WriteAppendRow(int row) {
    WriteRow(row, BlankLuminaire());
    WriteAppendRowLightSource(row);
}

void CQuorvaneLuminaireDlg::WriteAppendRowLightSource(int row) {
    PrepareLightSourceCells(row, FilterCategoryIds(), {});
    m_presetLightSource = m_lists.LightSourceIds(Grid().GetItemText(row, LightSources), {});
}

void CQuorvaneLuminaireDlg::WriteLightSourceCells(int row, const tagLUMINAIREINFO& record) {
    m_lists.ReadLightSources(record.LamphouseTypeID);
    const CString texts = m_lists.LightSourceTexts(record.DefaultLamphouse);
    PrepareLightSourceCells(row, record.LamphouseTypeID, texts);
    Grid().SetItemText(row, LightSources, texts);  // also one that is not among the choices
}

// The default light source is picked from the light sources of the categories, or set in a dialog of its own
// for mixed light, which then also sets the counts.
void CQuorvaneLuminaireDlg::PrepareLightSourceCells(int row, const CString& categoryIds,
                                                    const CString& texts) {
    const bool isMixed = IsMixedLight(categoryIds);
    if (isMixed) {
        SetUpButtonCell(Grid(), *m_buttons, row, LightSources, QStringLiteral("..."));
        WriteCell(row, LightSources, texts, kLeft | CellFormat::EndEllipsis);
    } else {
        SetUpComboCell(Grid(), *m_buttons, row, LightSources, m_lists.LightSources(categoryIds), texts);
        if (!m_lists.IsWhole() && !texts.isEmpty()) {
            Grid().SetItemText(row, LightSources, texts);  // it may be among those that could not be read
        }
    }
    MarkState(row, LightSourceCount, isMixed ? CellState::ReadOnly : 0);
}

// Cells that are not typed into stand out; 0 makes the cell an ordinary one.
void CQuorvaneLuminaireDlg::MarkState(int row, int column, unsigned state) {
    Grid().SetItem({.row = row,
                    .col = column,
                    .mask = ItemMask::State | ItemMask::BackColour,
                    .state = state,
                    .backColour = state != 0 ? kReadOnlyColour : QColor()});
}

void CQuorvaneLuminaireDlg::ReadCell(int row, int column, tagLUMINAIREINFO& record) {
    const CString text = Grid().GetItemText(row, column);
    switch (column) {
        case Name:
            record.LampName = text;
            break;
        case Model:
            record.LampModel = text;
            break;
        case Efficiency:
            record.LuminaireEfficiency = ReadReal(row, column, record.LuminaireEfficiency);
            break;
        case MaxLhAA:
            record.MaxLhAA = ReadReal(row, column, record.MaxLhAA);
            break;
        case MaxLhBB:
            record.MaxLhBB = ReadReal(row, column, record.MaxLhBB);
            break;
        case Categories:
            if (text != m_lists.CategoryNames(record.LamphouseTypeID)) {
                record.LamphouseTypeID = m_lists.CategoryIds(text);
            }
            break;
        case LightSources:
            if (text != m_lists.LightSourceTexts(record.DefaultLamphouse)) {
                m_lists.Forget();  // the light sources may have changed since they were listed
                record.DefaultLamphouse = m_lists.LightSourceIds(text, record.DefaultLamphouse);
            }
            break;
        case LightSourceCount:
            record.LamphouseCount = text.isEmpty() ? QStringLiteral("0") : text;
            Grid().SetItemText(row, column, record.LamphouseCount);
            break;
        case BallastCount:
            record.BallastCount = ReadInteger(row, column);
            break;
        case BallastPower:
            record.BallastPower = ReadReal(row, column, record.BallastPower);
            break;
        case Maker:
            record.Factory = text;
            break;
        case Photo:
            record.LampPhoto = text;
            break;
        case FactorKind:
            record.UtilizationFactorType = text == kRoomIndex ? 1 : 0;
            break;
        default:
            break;
    }
}

bool CQuorvaneLuminaireDlg::IsBlank(const tagLUMINAIREINFO& record) const {
    tagLUMINAIREINFO blank = BlankLuminaire();
    blank.LampPhoto = record.LampPhoto;  // a photo alone is no luminaire
    if (record.DefaultLamphouse == m_presetLightSource) {
        blank.DefaultLamphouse = m_presetLightSource;  // nor is what the append row offers by itself
    }
    return record == blank;
}

// ---- Cells that open something

void CQuorvaneLuminaireDlg::PressButton(int row, int column) {
    switch (column) {
        case LightSources:
            return OpenMixedLightSources(row);
        case Photo:
            return OpenPhoto(row);
        case FactorTable:
            return OpenFactorTable(row);
        default:
            break;
    }
}

// The category cell is not edited as text; the keys that would edit it open its chooser.
bool CQuorvaneLuminaireDlg::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && Grid().GetFocusCell().col == Categories) {
        if (OpensDropDown(*static_cast<QKeyEvent*>(event))) {
            OpenTypeChooser(Grid().GetFocusCell().row);
            return true;
        }
    }
    return RecordPage::eventFilter(watched, event);
}

void CQuorvaneLuminaireDlg::OpenTypeChooser(int row) {
    m_chooserRow = row;
    Grid().EnsureVisible(row, Categories);
    const QRect cell = Grid().CellRect(row, Categories);
    const QRect onScreen(Grid().viewport()->mapToGlobal(cell.topLeft()), cell.size());
    m_chooser->Show(onScreen, m_lists.SplitCategoryNames(Grid().GetItemText(row, Categories)));
}

void CQuorvaneLuminaireDlg::TakeChosenTypes(const std::vector<CString>& names) {
    // Left as it was found, the list changes nothing: not the order of the categories either, nor those
    // that the file no longer has.
    const std::vector<CString> before =
        m_lists.SplitCategoryNames(Grid().GetItemText(m_chooserRow, Categories));
    if (std::is_permutation(names.begin(), names.end(), before.begin(), before.end())) {
        return;
    }
    m_lists.Forget();
    const CString text = Join(names);
    Grid().SetItemText(m_chooserRow, Categories, text);
    PrepareLightSourceCells(m_chooserRow, m_lists.CategoryIds(text),
                            Grid().GetItemText(m_chooserRow, LightSources));
    TakeRow(m_chooserRow, {Categories, LightSources, LightSourceCount});
    if (!m_lists.IsWhole()) {
        TellIncompleteLoad();
    }
}

void CQuorvaneLuminaireDlg::OpenMixedLightSources(int row) {
    CMixLuminaireSettingDlg dialog(m_database, Grid().GetItemText(row, LightSources),
                                   Grid().GetItemText(row, LightSourceCount), this);
    if (dialog.exec() == QDialog::Accepted) {
        Grid().SetItemText(row, LightSources, dialog.GetLightSources());
        Grid().SetItemText(row, LightSourceCount, dialog.GetCounts());
        TakeRow(row, {LightSources, LightSourceCount});
    }
}

void CQuorvaneLuminaireDlg::OpenPhoto(int row) {
    CLuminairePhotoSettingDlg dialog(m_photos.FilePath(Grid().GetItemText(row, Photo)),
                                     Grid().GetItemText(row, Name), this);
    if (dialog.exec() == QDialog::Accepted) {
        Grid().SetItemText(row, Photo, dialog.Path());
        TakeRow(row, {Photo});
    }
}

// The factors hang on the luminaire's stored ID, so the row is stored first.
void CQuorvaneLuminaireDlg::OpenFactorTable(int row) {
    if (Grid().GetItemData(row, 0) == 0) {
        return;
    }
    const int id = SaveRow(row);
    if (id > 0) {
        CCoefficientTableDlg(m_database, id, Grid().GetItemText(row, Name),
                             Grid().GetItemText(row, FactorKind), this)
            .exec();
    }
}

// ---- Storing

bool CQuorvaneLuminaireDlg::Submit() {
    m_lists.Forget();
    KeepPictures();
    {
        const PhotoStore::OneListing listing(m_photos);
        RecordPage::Submit();
    }
    const int withoutCategory = CountWithoutCategory();
    if (withoutCategory > 0) {
        ShowMessage(
            this,
            FormatText(QStringLiteral("有%d个灯具没有灯具类别,按灯具类型查不到它们。"), {withoutCategory}),
            QStringLiteral("灯具库"));
    }
    return true;
}

int CQuorvaneLuminaireDlg::CountWithoutCategory() {
    const std::vector<tagLUMINAIREINFO>& records = Working().Records();
    return static_cast<int>(std::count_if(records.begin(), records.end(), [this](const auto& record) {
        return record.LamphouseTypeID.isEmpty() && !Working().IsUnwritten(record.ID);
    }));
}

// A luminaire may be given the picture of another, which gets a new one in the same go: all such pictures are
// copied before any is replaced.
void CQuorvaneLuminaireDlg::KeepPictures() {
    for (const tagLUMINAIREINFO& record : Working().Records()) {
        if (!PictureOf(record).file.isEmpty()) {
            continue;
        }
        PhotoStore::KeptPicture kept = m_photos.Keep(record.ID, record.LampPhoto);
        if (!kept.file.isEmpty()) {
            Luggage& luggage = m_luggage[record.ID];
            luggage.photo = record.LampPhoto;
            luggage.picture = std::move(kept);
        }
    }
}

PhotoStore::KeptPicture CQuorvaneLuminaireDlg::PictureOf(const tagLUMINAIREINFO& record) const {
    const auto luggage = m_luggage.find(record.ID);
    return luggage != m_luggage.end() && luggage->second.photo == record.LampPhoto
               ? luggage->second.picture
               : PhotoStore::KeptPicture();
}

// The row is made without a photo, which gets its place in the library by the ID that the row then has.
bool CQuorvaneLuminaireDlg::Insert(tagLUMINAIREINFO& record) {
    const int provisionalId = record.ID;
    CString photo = std::exchange(record.LampPhoto, {});
    const bool inserted = m_database.InsertLuminaire(record);
    record.LampPhoto = std::move(photo);
    if (!inserted) {
        return false;
    }
    if (auto luggage = m_luggage.extract(provisionalId)) {
        luggage.key() = record.ID;
        m_luggage.insert(std::move(luggage));
    }
    return Update(record);
}

bool CQuorvaneLuminaireDlg::Update(tagLUMINAIREINFO& record) {
    record.DefaultLamphouse = m_lists.Resolved(record.DefaultLamphouse);
    const CString kept = PictureOf(record).file;
    const PhotoStore::StagedPhoto staged =
        m_photos.Stage(record.ID, kept.isEmpty() ? record.LampPhoto : kept);
    CString source = std::exchange(record.LampPhoto, staged.photo);
    bool written = m_database.UpdateLuminaire(record);
    if (written && !m_photos.Place(record.ID, staged)) {
        record.LampPhoto = staged.old;
        written = m_database.UpdateLuminaire(record);
    }
    if (!written) {
        record.LampPhoto = std::move(source);  // the next submit tries again
        return false;
    }
    const auto luggage = m_luggage.find(record.ID);
    if (luggage != m_luggage.end()) {
        if (luggage->second.factors && !ReplaceFactors(record.ID, *luggage->second.factors)) {
            luggage->second.picture = {};
            return false;
        }
        m_luggage.erase(luggage);
    }
    return true;
}

bool CQuorvaneLuminaireDlg::Delete(int id) {
    if (!m_database.DeleteLuminaire(id)) {
        return false;
    }
    m_photos.Delete(id);
    m_luggage.erase(id);
    return true;
}

// Writes one row at once. Its stored ID, or 0 when it could not be written, which the user is told.
int CQuorvaneLuminaireDlg::SaveRow(int row) {
    m_lists.Forget();
    KeepPictures();
    const int oldId = Grid().GetItemData(row, 0);
    const auto [id, written] = Working().SubmitOne(
        oldId, [this](tagLUMINAIREINFO& record) { return Insert(record); },
        [this](tagLUMINAIREINFO& record) { return Update(record); });
    const bool isNew = oldId < 0 && id > 0;
    WriteRowHead(row, isNew ? FormatInteger(NextRowNumber()) : Grid().GetItemText(row, 0), id, !written);
    Grid().SetItemText(row, Photo, Working().Find(id)->LampPhoto);
    if (!written) {
        TellFailures({.writes = 1});
    }
    return written ? id : 0;
}

// ---- Copy and paste

int CQuorvaneLuminaireDlg::SelectedRow() const {
    const CCellRange selected = Grid().GetSelectedCellRange();
    return Grid().IsValid(selected) ? selected.minRow : -1;
}

void CQuorvaneLuminaireDlg::EnablePaste() {
    m_paste->setEnabled(!IsBlank(m_copied.luminaire));
}

void CQuorvaneLuminaireDlg::Copy() {
    EndEditing();
    const int row = SelectedRow();
    const tagLUMINAIREINFO* record = row < 0 ? nullptr : Working().Find(Grid().GetItemData(row, 0));
    if (record != nullptr) {
        m_copied = {.luminaire = *record, .picture = PictureOf(*record), .factors = {}};
        if (m_copied.picture.file.isEmpty()) {
            m_copied.picture = m_photos.Keep(0, record->LampPhoto);
        }
        const auto luggage = m_luggage.find(record->ID);
        if (luggage != m_luggage.end() && luggage->second.factors) {
            m_copied.factors = *luggage->second.factors;
        } else if (!m_database.LoadUtilizationFactors(record->ID, m_copied.factors)) {
            // A part of the table, pasted, would take the place of a whole one.
            m_copied = {.luminaire = BlankLuminaire(), .picture = {}, .factors = {}};
            TellIncompleteLoad();
        }
    }
    EnablePaste();
}

void CQuorvaneLuminaireDlg::Paste() {
    EndEditing();
    const int row = SelectedRow();
    if (row < 0) {
        return;
    }
    const int id = Grid().GetItemData(row, 0);
    tagLUMINAIREINFO luminaire = m_copied.luminaire;
    const bool wasModified = Working().IsModified();
    if (id == 0) {
        AppendRecord(row, luminaire);
    } else {
        luminaire.ID = id;
        Working().Replace(luminaire);
    }
    m_luggage[Grid().GetItemData(row, 0)] = {luminaire.LampPhoto, m_copied.picture, m_copied.factors};
    WriteRow(row, luminaire);
    Grid().Refresh();
    Working().SetModified(SaveRow(row) == 0 || wasModified);
}

// Nothing is added to factors that could not be deleted: each would be there twice.
bool CQuorvaneLuminaireDlg::ReplaceFactors(int luminaireId, const Factors& factors) {
    if (!m_database.DeleteUtilizationFactorsOfLuminaire(luminaireId)) {
        return false;
    }
    bool whole = true;
    for (tagLUMINAIREUTILIZATIONFACTOR factor : factors) {
        factor.LuminaireID = luminaireId;
        whole = m_database.InsertUtilizationFactor(factor) && whole;
    }
    return whole;
}

}  // namespace quorvane
