#include "editors/luminaire/luminaire_page.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPushButton>
#include <algorithm>

#include "data/text_format.h"
#include "editors/factor_table/factor_table_dialog.h"
#include "editors/factor_table/kept_factor_table.h"
#include "editors/filter_list.h"
#include "editors/kept_records.h"
#include "editors/luminaire/mixed_light_source_dialog.h"
#include "editors/photo/photo_dialog.h"
#include "editors/submit.h"
#include "model/factor_table/factor_table_cbor.h"
#include "model/light_source_text.h"
#include "widgets/dialog_template.h"
#include "widgets/image_button.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kFilterLabel = 1007;
constexpr int kFilter = 1006;
constexpr int kGridFrame = 1005;
constexpr int kCopy = 1022;
constexpr int kPaste = 1023;
constexpr int kGrid = 101;

constexpr int kCategories = 6;
constexpr int kLightSource = 7;
constexpr int kPhoto = 12;

const DialogControl kTemplate[] = {
    {kFilterLabel, ControlKind::Label, u"灯具类型:", {28, 11, 44, 10}},
    {kFilter, ControlKind::DropDownList, u"", {74, 10, 126, 12}},
    {kCopy, ControlKind::PushButton, u"复制", {318, 8, 44, 16}},
    {kPaste, ControlKind::PushButton, u"粘贴", {372, 8, 44, 16}},
    {kGridFrame, ControlKind::Frame, u"", {7, 30, 456, 203}},
};

const CString kCaption = u"灯具库"_s;

// In the kept edits.
const CString kFilterKey = u"filter"_s;
const CString kLuminairesKey = u"records"_s;
const CString kFactorsKey = u"factorTable"_s;
const CString kPastedKey = u"pastedFactors"_s;
const CString kPhotosKey = u"photosLeftAlone"_s;
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

}  // namespace

CQuorvaneLuminaireDlg::CQuorvaneLuminaireDlg(CLightingDatabase& database, ReferenceLists& lists,
                                             QWidget* parent)
    : CPage(parent),
      m_database(database),
      m_lists(lists),
      m_luminaires(database, lists),
      m_grid(*this, m_luminaires.Records(), Rules()),
      m_photoTips([this] { m_grid.Control().RenewTip(); }),
      m_chooser(this) {
    MakeControls();
    m_grid.Create(kGrid, DialogItem(this, kGridFrame)->geometry(), SharesOf::ClientWidth);
    m_grid.Control().installEventFilter(this);
    m_grid.Fill();
    connect(m_filter, &CEaseComboBox::SelectionChanged, this, &CQuorvaneLuminaireDlg::ChangeFilter);
    m_grid.Control().SetTakesFiles([](CCellID cell) { return cell.row > 0 && cell.col == kPhoto; });
    connect(
        &m_grid.Control(), &CGridCtrl::FilesDropped, this,
        [this](int row, int /*column*/, const QStringList& paths) { TakeDroppedPhoto(row, paths); },
        Qt::QueuedConnection);  // the program that the file comes from waits for the drop to end
    connect(&m_chooser, &CLamphouseTypeChoiceWindow::Chosen, this, &CQuorvaneLuminaireDlg::TakeChosenTypes);
    if (m_database.GetApplicationParentFolder().isEmpty()) {
        ShowMessage(this, u"灯具图片库路径错误"_s);
    }
}

CQuorvaneLuminaireDlg::~CQuorvaneLuminaireDlg() = default;

void CQuorvaneLuminaireDlg::MakeControls() {
    CreateControls(this, kTemplate);
    auto* copy = static_cast<CImageButton*>(DialogItem(this, kCopy));
    auto* paste = static_cast<CImageButton*>(DialogItem(this, kPaste));
    copy->SetImage(IconId::Copy, u"复制数据"_s);
    paste->SetImage(IconId::Paste, u"粘贴数据"_s);
    connect(copy, &QPushButton::clicked, this, &CQuorvaneLuminaireDlg::Copy);
    connect(paste, &QPushButton::clicked, this, &CQuorvaneLuminaireDlg::Paste);
    m_paste = paste;
    m_paste->setEnabled(m_luminaires.CanPaste());

    m_filter = DialogItem<CEaseComboBox>(this, kFilter);
    NameForReaders(*m_filter, u"灯具类型"_s);
    for (const tagLAMPHOUSETYPE& category : m_lists.Categories()) {
        m_filter->AddString(category.LamphouseType);
    }
    m_chooser.SetTypeNames(m_filter->Strings());
    m_filter->AddString(u"全部"_s);
    m_filter->AddString(u"无类别"_s);
    if (!m_lists.HasAllCategories()) {
        TellIncompleteLoadSoon(this, kCaption);
    }
}

// ---- Columns

RecordGridRules<tagLUMINAIREINFO> CQuorvaneLuminaireDlg::Rules() {
    return {.caption = kCaption,
            .columns = Columns(),
            .title = [](const tagLUMINAIREINFO& record) { return record.LampName; },
            .isBlank = [this](const tagLUMINAIREINFO& record) { return IsBlank(record); },
            .makeBlank =
                [this] {
                    tagLUMINAIREINFO blank = EmptyLuminaire();
                    blank.DefaultLamphouse = PresetLightSource();
                    return blank;
                },
            .edited = [this] { Q_EMIT EditsChanged(); },
            .slice = [this] { return m_filter->currentText(); }};
}

// The append row, and a new luminaire until its categories are ticked, offer the light sources of the chosen
// category.
const CString& CQuorvaneLuminaireDlg::CategoriesOf(const tagLUMINAIREINFO& record) const {
    const bool isUnstored = record.ID <= 0;
    return isUnstored && record.LamphouseTypeID.isEmpty() ? m_filterCategoryId : record.LamphouseTypeID;
}

CString CQuorvaneLuminaireDlg::PresetLightSource() {
    m_presetLightSource = m_lists.DefaultLightSource(m_filterCategoryId, {});
    return m_presetLightSource;
}

bool CQuorvaneLuminaireDlg::IsBlank(const tagLUMINAIREINFO& record) const {
    tagLUMINAIREINFO entered = record;
    if (entered.DefaultLamphouse == m_presetLightSource) {
        entered.DefaultLamphouse.clear();
    }
    return IsEmptyLuminaire(entered);
}

// ---- What is shown

bool CQuorvaneLuminaireDlg::SettleChanges() {
    return m_grid.SettleChanges([this] {
        Submit();
        return !m_luminaires.Records().HasUnwritten() && CountLeftOut() == 0;
    });
}

void CQuorvaneLuminaireDlg::ChangeFilter() {
    if (SettleChoice(*m_filter, m_lastFilter, [this] { return SettleChanges(); })) {
        Load();
    }
}

void CQuorvaneLuminaireDlg::Reload() {
    if (m_filter->currentIndex() >= 0 && SettleChanges()) {
        Load();
    }
}

void CQuorvaneLuminaireDlg::Load() {
    m_lists.Invalidate();
    const int chosen = m_filter->currentIndex();
    m_filterCategoryId = chosen < 0 || IsBehindCategories(chosen)
                             ? CString()
                             : FormatInteger(m_lists.CategoryId(m_filter->currentText()));
    const bool complete = chosen == m_filter->count() - 1 ? m_luminaires.LoadWithoutCategory()
                                                          : m_luminaires.Load(m_filterCategoryId);
    LoadListsOfRecords();
    m_grid.Fill();
    if (!complete || !m_lists.IsComplete()) {
        TellIncompleteLoad(this, kCaption);
    }
}

// Behind the categories stand all luminaires and those without a category.
bool CQuorvaneLuminaireDlg::IsBehindCategories(int entry) const {
    return entry >= m_filter->count() - 2;
}

// The written luminaires that have lost their last category, and with it the place where they are listed.
int CQuorvaneLuminaireDlg::CountLeftOut() const {
    return IsBehindCategories(m_filter->currentIndex()) ? 0 : m_luminaires.CountWithoutCategory();
}

// Rows are made when they are first shown. What they refer to is loaded at once, so that the user is told at
// once when it could not be loaded completely.
void CQuorvaneLuminaireDlg::LoadListsOfRecords() {
    m_luminaires.Records().ForEach([this](const tagLUMINAIREINFO& record) {
        m_lists.CategoryNames(record.LamphouseTypeID);
        m_lists.LightSources(record.LamphouseTypeID);
        m_lists.LightSourceTexts(record.DefaultLamphouse);
    });
}

void CQuorvaneLuminaireDlg::Refresh() {
    m_lists.Invalidate();
    LoadListsOfRecords();
    m_grid.Refresh();
    if (!m_lists.IsComplete()) {
        TellIncompleteLoad(this, kCaption);
    }
}

// Light sources may have been changed on their own page.
void CQuorvaneLuminaireDlg::showEvent(QShowEvent* event) {
    CPage::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    m_lists.Invalidate();
    LoadListsOfRecords();
    tagLUMINAIREINFO draft = m_luminaires.Records().Draft();
    draft.DefaultLamphouse = PresetLightSource();
    m_luminaires.Records().ResetDraft(draft);
    m_grid.RemakeRows();
    if (!m_lists.IsComplete()) {
        TellIncompleteLoadSoon(this, kCaption);
    }
}

// ---- Cells that open something

// The category cell is not edited as text; the keys that would edit it open its chooser.
bool CQuorvaneLuminaireDlg::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && OpensDropDown(*static_cast<QKeyEvent*>(event)) &&
        m_grid.OpenChooser(m_grid.Control().GetFocusCell())) {
        return true;
    }
    return CPage::eventFilter(watched, event);
}

void CQuorvaneLuminaireDlg::OpenTypeChooser(CCellID cell) {
    CGridCtrl& grid = m_grid.Control();
    m_chooserRow = cell.row;
    grid.EnsureVisible(cell.row, cell.col);
    const QRect rect = grid.CellRect(cell.row, cell.col);
    m_chooser.Show(QRect(grid.viewport()->mapToGlobal(rect.topLeft()), rect.size()),
                   m_lists.SplitCategoryNames(grid.GetItemText(cell.row, cell.col)));
}

void CQuorvaneLuminaireDlg::TakeChosenTypes(const std::vector<CString>& names) {
    const tagLUMINAIREINFO before = m_grid.RecordAt(m_chooserRow);
    tagLUMINAIREINFO record = before;
    m_lists.Invalidate();
    SetCategories(names, record);
    if (record == before) {
        return;
    }
    m_grid.Put({m_chooserRow, kCategories}, record);
    if (!m_lists.IsComplete()) {
        TellIncompleteLoad(this, kCaption);
    }
}

void CQuorvaneLuminaireDlg::OpenMixedLightSources(int row) {
    tagLUMINAIREINFO record = m_grid.RecordAt(row);
    m_lists.Invalidate();
    CMixLuminaireSettingDlg dialog(m_database, m_lists, m_lists.LightSourceTexts(record.DefaultLamphouse),
                                   record.LamphouseCount, this);
    if (dialog.exec() == QDialog::Accepted) {
        TakeLightSources(dialog.GetLightSources(), record);
        record.LamphouseCount = CountText(dialog.GetCounts());
        m_grid.Put({row, kLightSource}, record);
    }
}

void CQuorvaneLuminaireDlg::OpenPhoto(int row) {
    tagLUMINAIREINFO record = m_grid.RecordAt(row);
    CLuminairePhotoSettingDlg dialog(m_luminaires.Photos().FilePath(record.LampPhoto), record.LampName, this);
    if (record.LampPhoto.isEmpty()) {
        dialog.ShowFolder(m_photoFolder);
    }
    if (dialog.exec() == QDialog::Accepted && dialog.IsChosen()) {
        record.LampPhoto = dialog.Path();
        m_photoFolder = record.LampPhoto.isEmpty() ? m_photoFolder : QFileInfo(record.LampPhoto).path();
        m_grid.Put({row, kPhoto}, record);
    }
}

void CQuorvaneLuminaireDlg::TakeDroppedPhoto(int row, const QStringList& paths) {
    if (paths.size() != 1) {
        ShowMessage(this, u"每次只能拖放一个图片文件。"_s, kCaption);
        return;
    }
    const CString path = QDir::toNativeSeparators(paths.front());
    if (MayBePhoto(this, path, kCaption)) {
        tagLUMINAIREINFO record = m_grid.RecordAt(row);
        record.LampPhoto = path;
        m_grid.Put({row, kPhoto}, record);
    }
}

// Factors refer to the luminaire's stored ID, so the row is saved first.
void CQuorvaneLuminaireDlg::OpenFactorTable(int row) {
    if (m_grid.IdAt(row) == 0) {
        return;
    }
    const WorkingLuminaires::Saved saved = m_luminaires.Save(m_grid.IdAt(row));
    ShowSaved(row, saved);
    if (saved.StoredId() != 0) {
        MakeFactorTable(m_grid.RecordAt(row));
        EditFactorTable();
    }
}

void CQuorvaneLuminaireDlg::MakeFactorTable(const tagLUMINAIREINFO& record) {
    m_factorTable = std::make_unique<CCoefficientTableDlg>(m_database, record.ID, record.LampName,
                                                           FactorKindText(record), this);
    connect(m_factorTable.get(), &CCoefficientTableDlg::EditsChanged, this, &CPage::EditsChanged);
}

void CQuorvaneLuminaireDlg::EditFactorTable() {
    m_factorTable->exec();
    m_factorTable.reset();
    Q_EMIT EditsChanged();
}

// ---- Kept edits

int CQuorvaneLuminaireDlg::EditCount() const {
    const bool isTableEdited = m_factorTable != nullptr && m_factorTable->IsModified();
    return m_luminaires.Records().EditCount() + static_cast<int>(m_luminaires.PendingFactors().size()) +
           (isTableEdited ? 1 : 0);
}

std::function<QCborMap()> CQuorvaneLuminaireDlg::KeepEdits() const {
    std::optional<FactorTableEditing::Kept> table;
    if (m_factorTable != nullptr && m_factorTable->IsModified()) {
        table = m_factorTable->KeepEdits();
    }
    return [edits = EditsOf(m_luminaires.Records()), filter = m_filter->currentText(), table,
            pasted = m_luminaires.PendingFactors(), photos = m_luminaires.LeftAlonePhotos()] {
        QCborMap kept{{kFilterKey, filter}, {kLuminairesKey, ToCbor(edits)}};
        QCborArray tables;
        for (const auto& [id, factors] : pasted) {
            tables.append(QCborArray{id, ToCbor(factors.factors),
                                     factors.inFile ? ToCbor(*factors.inFile) : QCborValue()});
        }
        kept.insert(kPastedKey, tables);
        kept.insert(kPhotosKey, ToCbor(photos));
        if (table) {
            kept.insert(kFactorsKey, ToCbor(*table));
        }
        return kept;
    };
}

QStringList CQuorvaneLuminaireDlg::MakeEditsAgain(const QCborMap& kept) {
    const CString filter = kept[kFilterKey].toString();
    if (!filter.isEmpty() && m_filter->Holds(filter)) {
        m_filter->SelectString(filter);
        m_lastFilter = ChosenEntry(*m_filter);
        Load();
    }
    std::map<int, int> newIds;
    QStringList refused = quorvane::MakeEditsAgain(
        kept[kLuminairesKey], m_luminaires.Records(), m_grid,
        {[this](std::vector<tagLUMINAIREINFO>& all) { return m_database.LoadLuminairesByType({}, all); }},
        &newIds);
    const auto idNow = [&newIds](const QCborValue& id) {
        const auto renewed = newIds.find(static_cast<int>(id.toInteger()));
        return renewed == newIds.end() ? static_cast<int>(id.toInteger()) : renewed->second;
    };
    for (const auto& photo : kept[kPhotosKey].toArray()) {
        m_luminaires.LeavePhotoAlone(idNow(photo));
    }
    for (const auto& pasted : kept[kPastedKey].toArray()) {
        refused += PasteFactorsAgain(pasted.toArray(), idNow(pasted.toArray().at(0)));
    }
    const auto table = ReadFactorTable(kept[kFactorsKey]);
    if (table) {
        const tagLUMINAIREINFO* luminaire = m_luminaires.Records().Find(table->luminaireId);
        if (luminaire != nullptr) {
            MakeFactorTable(*luminaire);
        }
        if (luminaire == nullptr || !m_factorTable->MakeEditsAgain(*table)) {
            refused += RefusedLines(luminaire == nullptr ? CString() : luminaire->LampName, *table);
        }
        if (luminaire != nullptr && !m_factorTable->IsModified()) {
            m_factorTable.reset();
        }
    }
    return refused;
}

// Pasted factors that could not be written: [their luminaire's ID then, they, those in the file then].
QStringList CQuorvaneLuminaireDlg::PasteFactorsAgain(const QCborArray& kept, int id) {
    WorkingLuminaires::PastedFactors pasted;
    const bool isRead = ReadCbor(kept.at(1), pasted.factors) &&
                        (kept.at(2).isUndefined() || ReadCbor(kept.at(2), pasted.inFile.emplace()));
    if (!isRead) {
        return {u"利用系数表: 上次粘贴而未写入的利用系数不能读取,请重新粘贴"_s};
    }
    const tagLUMINAIREINFO* luminaire = m_luminaires.Records().Find(id);
    if (luminaire != nullptr && m_luminaires.PasteFactorsAgain(id, pasted)) {
        return {};
    }
    FactorTableEditing::Kept lost;
    lost.stored.factors = pasted.inFile.value_or(WorkingLuminaires::Factors());
    lost.edited.factors = pasted.factors;
    return RefusedLines(luminaire == nullptr ? CString() : luminaire->LampName, lost);
}

void CQuorvaneLuminaireDlg::OpenKeptDialog() {
    if (m_factorTable != nullptr) {
        EditFactorTable();
    }
}

// ---- Storing

bool CQuorvaneLuminaireDlg::Submit() {
    RunSubmit(this, kCaption, m_database,
              {.prepare = [this](const ProgressCallback& progress) { m_luminaires.CopyPhotos(progress); },
               .write = [this](const ProgressCallback& progress) { return m_luminaires.Submit(progress); },
               .compare = [this](SubmitFailures& failures) { m_luminaires.Compare(failures); }});
    const int withoutCategory = CountLeftOut();
    if (withoutCategory > 0) {
        ShowMessage(
            this,
            FormatText(u"有%d个灯具未选灯具类别,按灯具类型筛选时不会列出,请补选。"_s, {withoutCategory}),
            kCaption);
    }
    return true;
}

void CQuorvaneLuminaireDlg::ShowSaved(int row, const WorkingLuminaires::Saved& saved) {
    m_grid.ShowSaved(row, saved.id, saved.written);
    TellFailures(this, kCaption, saved.failures);
}

// ---- Copy and paste

int CQuorvaneLuminaireDlg::SelectedRow() {
    const CCellRange selected = m_grid.Control().GetSelectedCellRange();
    return m_grid.Control().IsValid(selected) ? selected.minRow : -1;
}

void CQuorvaneLuminaireDlg::Copy() {
    EndEditing();
    const int row = SelectedRow();
    const int id = row < 0 ? 0 : m_grid.IdAt(row);
    if (id != 0 && !m_luminaires.Copy(m_grid.RecordAt(row))) {
        TellIncompleteLoad(this, kCaption);
    }
    m_paste->setEnabled(m_luminaires.CanPaste());
}

void CQuorvaneLuminaireDlg::Paste() {
    EndEditing();
    const int row = SelectedRow();
    if (row < 0) {
        return;
    }
    const bool isAppendRow = m_grid.IdAt(row) == 0;
    const WorkingLuminaires::Saved saved = m_luminaires.Paste(m_grid.IdAt(row));
    if (isAppendRow) {
        m_grid.AddAppendRow();
    }
    m_grid.EndHistory(u"粘贴的灯具已经写入数据库,不能撤销"_s);
    ShowSaved(row, saved);
    m_grid.Control().Refresh();
}

}  // namespace quorvane
