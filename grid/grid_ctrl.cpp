// The public operations of CGridCtrl. What they change happens in GridCore, what it looks like in
// GridController.
#include "grid/grid_ctrl.h"

#include <QDebug>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "grid/cells/grid_heading_cell.h"
#include "grid/grid_controller.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

CGridCtrl::CGridCtrl(int rows, int columns, int fixedRows, int fixedColumns) {
    m_controller = std::make_unique<GridController>(*this);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    viewport()->setMouseTracking(true);
    viewport()->setCursor(Qt::ArrowCursor);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    SetRowCount(rows);
    SetColumnCount(columns);
    SetFixedRowCount(fixedRows);
    SetFixedColumnCount(fixedColumns);
}

CGridCtrl::~CGridCtrl() {
    CancelEdit();
}

bool CGridCtrl::Create(const QRect& rect, QWidget* parent, int id, unsigned style) {
    if (parent == nullptr) {
        return false;
    }
    setParent(parent);
    setGeometry(rect);
    m_controlId = id;
    setObjectName(u"MFCGridCtrl"_s);
    setFrameShape((style & Border) != 0 ? QFrame::StyledPanel : QFrame::NoFrame);
    setFocusPolicy((style & TabStop) != 0 ? Qt::StrongFocus : Qt::ClickFocus);
    m_controller->ResetSizes();
    setVisible((style & Visible) != 0);
    return true;
}

int CGridCtrl::GetControlId() const {
    return m_controlId;
}

const GridCore& CGridCtrl::Core() const {
    return m_controller->Core();
}

GridCore& CGridCtrl::MutableCore() {
    return m_controller->Core();
}

// ---- Shape and sizes

int CGridCtrl::GetRowCount() const {
    return Core().RowCount();
}

int CGridCtrl::GetColumnCount() const {
    return Core().ColumnCount();
}

int CGridCtrl::GetFixedRowCount() const {
    return Core().Layout().rows.FixedCount();
}

int CGridCtrl::GetFixedColumnCount() const {
    return Core().Layout().columns.FixedCount();
}

bool CGridCtrl::SetRowCount(int rows) {
    return m_controller->Do([&] { return MutableCore().SetCount(Qt::Vertical, rows); });
}

bool CGridCtrl::SetColumnCount(int columns) {
    return m_controller->Do([&] { return MutableCore().SetCount(Qt::Horizontal, columns); });
}

bool CGridCtrl::SetFixedRowCount(int rows) {
    return m_controller->Do([&] { return MutableCore().SetFixedCount(Qt::Vertical, rows); });
}

bool CGridCtrl::SetFixedColumnCount(int columns) {
    return m_controller->Do([&] { return MutableCore().SetFixedCount(Qt::Horizontal, columns); });
}

int CGridCtrl::InsertRow(const CString& heading, int before) {
    return m_controller->Do([&] { return MutableCore().InsertRow(heading, before); });
}

int CGridCtrl::InsertColumn(const CString& heading, unsigned format, int before) {
    return m_controller->Do([&] { return MutableCore().InsertColumn(heading, format, before); });
}

bool CGridCtrl::DeleteRow(int row) {
    return m_controller->Do([&] { return MutableCore().DeleteRow(row); });
}

bool CGridCtrl::DeleteNonFixedRows() {
    return SetRowCount(GetFixedRowCount());
}

void CGridCtrl::DeleteAllItems() {
    m_controller->Perform([this] {
        SetRowCount(0);
        SetColumnCount(0);
    });
}

bool CGridCtrl::SetColumnWidth(int column, int width) {
    return MutableCore().SetSize(Qt::Horizontal, column, width);
}

bool CGridCtrl::SetRowHeight(int row, int height) {
    return MutableCore().SetSize(Qt::Vertical, row, height);
}

int CGridCtrl::GetColumnWidth(int column) const {
    return column >= 0 && column < GetColumnCount() ? Core().Layout().columns.Size(column) : 0;
}

int CGridCtrl::GetRowHeight(int row) const {
    return row >= 0 && row < GetRowCount() ? Core().Layout().rows.Size(row) : 0;
}

void CGridCtrl::SetFrozenColumnCount(int columns) {
    m_controller->SetFrozenColumns(std::clamp(columns, 0, GetColumnCount()));
}

int CGridCtrl::GetFrozenColumnCount() const {
    return Core().Layout().columns.FrozenCount();
}

int CGridCtrl::LeftmostColumn() const {
    return Core().Layout().columns.LineAtScreen(0);
}

// ---- Contents

void CGridCtrl::SetRowMaker(RowMaker make) {
    MutableCore().SetRowMaker(std::move(make));
}

void CGridCtrl::RemakeRow(int row) {
    MutableCore().RemakeRows(row, row);
}

void CGridCtrl::RemakeRows() {
    MutableCore().RemakeRows(0, GetRowCount() - 1);
}

CGridCellBase* CGridCtrl::Cell(int row, int column) {
    return const_cast<CGridCellBase*>(std::as_const(*this).Cell(row, column));
}

const CGridCellBase* CGridCtrl::Cell(int row, int column) const {
    if (row < 0 || row >= GetRowCount()) {
        throw std::invalid_argument("row index beyond the row table");
    }
    return Core().Cell({row, column});
}

bool CGridCtrl::SetItemText(int row, int column, const CString& text) {
    return MutableCore().SetText({row, column}, text);
}

CString CGridCtrl::GetItemText(int row, int column) const {
    return Core().Text({row, column});
}

bool CGridCtrl::SetItemData(int row, int column, qint32 value) {
    return MutableCore().Set({row, column}, &CGridCellBase::SetData, value);
}

qint32 CGridCtrl::GetItemData(int row, int column) const {
    const CGridCellBase* cell = Core().Cell({row, column});
    return cell != nullptr ? cell->GetData() : 0;
}

bool CGridCtrl::SetItemFormat(int row, int column, unsigned format) {
    return MutableCore().Set({row, column}, &CGridCellBase::SetFormat, format);
}

unsigned CGridCtrl::GetItemFormat(int row, int column) const {
    const CGridCellBase* cell = Core().Cell({row, column});
    return cell != nullptr ? cell->GetFormat() : 0;
}

bool CGridCtrl::SetItemState(int row, int column, unsigned state) {
    return MutableCore().Set({row, column}, &CGridCellBase::SetState, state);
}

unsigned CGridCtrl::GetItemState(int row, int column) const {
    const CGridCellBase* cell = Core().Cell({row, column});
    return cell != nullptr ? cell->GetState() : 0;
}

bool CGridCtrl::SetItem(const GridItem& item) {
    return MutableCore().SetItem(item);
}

bool CGridCtrl::SetCellType(int row, int column, CellMaker make) {
    return MutableCore().SetCellType({row, column}, make);
}

void CGridCtrl::SetImages(std::vector<QIcon> images) {
    m_images = std::move(images);
    m_controller->Redraw();
}

// ---- Merging, focus and selection

bool CGridCtrl::MergeCells(int row, int column, int extraRows, int extraColumns) {
    return MutableCore().Merge({row, column}, extraRows, extraColumns);
}

CCellRange CGridCtrl::MergeExtent(int row, int column) const {
    return Core().Extent({row, column});
}

CCellID CGridCtrl::GetFocusCell() const {
    return Core().Focus();
}

void CGridCtrl::SetFocusCell(CCellID cell) {
    m_controller->SetFocusCell(cell);
}

bool CGridCtrl::IsSelected(int row, int column) const {
    return Core().Selection().IsSelected({row, column});
}

void CGridCtrl::SetSelectedRange(const CCellRange& range) {
    MutableCore().SelectRange(range);
}

CCellRange CGridCtrl::GetSelectedCellRange() const {
    return Core().SelectedRange();
}

std::vector<GridRowRun> CGridCtrl::GetSelectedRows() const {
    return Core().Selection().Rows();
}

bool CGridCtrl::IsValid(const CCellRange& range) const {
    return Core().Layout().Holds(range);
}

// ---- Editing

CellEditing CGridCtrl::EditingOf(CCellID cell) const {
    return Core().EditingOf(cell);
}

bool CGridCtrl::IsCellEditable(int row, int column) const {
    return EditingOf({row, column}) != CellEditing::None;
}

bool CGridCtrl::BeginEdit(int row, int column) {
    return m_controller->BeginEdit({row, column}, InPlaceEdit::Start::AllSelected);
}

bool CGridCtrl::IsEditing() const {
    return m_controller->Edit().IsOn();
}

void CGridCtrl::EndEdit() {
    m_controller->EndEdit();
}

bool CGridCtrl::IsEditTyped() const {
    return m_controller->IsEditTyped();
}

void CGridCtrl::CancelEdit() {
    m_controller->CancelEdit();
}

void CGridCtrl::SetPasteQuestion(PasteQuestion ask) {
    m_controller->SetPasteQuestion(std::move(ask));
}

void CGridCtrl::SetTableTaker(TableTaker take) {
    MutableCore().tableTaker = std::move(take);
}

void CGridCtrl::SetEntryCheck(EntryCheck check) {
    MutableCore().entryCheck = std::move(check);
}

void CGridCtrl::SetTypesByColumns(bool typesByColumns) {
    MutableCore().typesByColumns = typesByColumns;
}

void CGridCtrl::EnterTexts(const CString& name, const std::vector<GridEntry>& entries) {
    m_controller->EndEdit();
    m_controller->EnterAll(name, entries);
}

void CGridCtrl::SetHasAppendRow(bool hasAppendRow) {
    MutableCore().hasAppendRow = hasAppendRow;
}

void CGridCtrl::AddMenuAction(GridMenuGroup group, QAction* action) {
    m_controller->AddMenuAction(group, action);
}

// ---- Marks and tips

void CGridCtrl::SetMarkSource(MarkSource marks) {
    m_marks = std::move(marks);
    m_controller->Redraw();
}

void CGridCtrl::SetHighlightSource(HighlightSource highlights) {
    m_highlights = std::move(highlights);
    m_controller->Redraw();
}

void CGridCtrl::SetTipSource(TipSource tips) {
    m_tips = std::move(tips);
}

unsigned CGridCtrl::MarksOf(CCellID cell) const {
    return m_marks && Core().IsSelectable(cell) ? m_marks(cell) : 0;
}

GridTip CGridCtrl::TipOf(CCellID cell) const {
    return m_tips && Core().Layout().Holds(cell) ? m_tips(cell) : GridTip();
}

void CGridCtrl::SetTakesFiles(std::function<bool(CCellID)> takes) {
    m_takesFiles = std::move(takes);
    viewport()->setAcceptDrops(m_takesFiles != nullptr);
}

bool CGridCtrl::SetHeadingButton(int column, HeadingOrder order, bool isFiltered) {
    const CCellID heading = Core().Origin({GetFixedRowCount() - 1, column});
    if (dynamic_cast<CGridHeadingCell*>(MutableCore().Cell(heading)) == nullptr &&
        !SetCellType<CGridHeadingCell>(heading.row, heading.col)) {
        return false;
    }
    dynamic_cast<CGridHeadingCell&>(*MutableCore().Cell(heading)).SetOrder(order, isFiltered);
    m_controller->Redraw();
    return true;
}

// ---- Looks and geometry

void CGridCtrl::SetBackgroundColour(const QColor& colour) {
    m_background = colour;
    m_controller->Redraw();
}

void CGridCtrl::Refresh() {
    m_controller->SyncScrollBars();
    m_controller->Redraw();
}

void CGridCtrl::EnsureVisible(int row, int column) {
    m_controller->EnsureVisible({row, column});
}

void CGridCtrl::TraceCellPosition(int row, int column) const {
    const QRect rect = CellRect(row, column);
    const int number = row * GetColumnCount() + column;
    qDebug().noquote() << QString::asprintf("\n第%d个单元格位置：left=%d，right=%d", number, rect.left(),
                                            rect.left() + rect.width());
}

QRect CGridCtrl::CellRect(int row, int column) const {
    return Core().CellRect({row, column});
}

CCellID CGridCtrl::CellAt(const QPoint& position) const {
    return Core().CellAt(position);
}

}  // namespace quorvane
