#include "grid/grid_ctrl.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QScrollBar>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "grid/accessibility/grid_accessible.h"
#include "grid/accessibility/grid_announcer.h"
#include "grid/cells/cell_text.h"
#include "grid/input/combo_list.h"
#include "grid/input/grid_keys.h"
#include "grid/input/grid_mouse.h"
#include "grid/input/in_place_edit.h"
#include "grid/layout/line_shift.h"

namespace quorvane {
namespace {

int DefaultRowHeight(const QFont& font) {
    constexpr int AroundText = 6;
    return QFontMetrics(font).height() + AroundText;
}

int DefaultColumnWidth(const QFont& font) {
    constexpr int Letters = 10;
    return QFontMetrics(font).horizontalAdvance(u'0') * Letters;
}

}  // namespace

CGridCtrl::CGridCtrl(int rows, int columns, int fixedRows, int fixedColumns)
    : m_layout{GridAxis(DefaultRowHeight(font())), GridAxis(DefaultColumnWidth(font()))},
      m_cells([this](int row) { FillMadeRow(row); }),
      m_keys(std::make_unique<GridKeys>(*this)),
      m_mouse(std::make_unique<GridMouse>(*this)),
      m_edit(std::make_unique<InPlaceEdit>(*this)),
      m_announcer(std::make_unique<GridAnnouncer>(*this)) {
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
    m_edit->Cancel();
}

bool CGridCtrl::Create(const QRect& rect, QWidget* parent, int id, unsigned style) {
    if (parent == nullptr) {
        return false;
    }
    setParent(parent);
    setGeometry(rect);
    m_controlId = id;
    setObjectName(QStringLiteral("MFCGridCtrl"));
    setFrameShape((style & Border) != 0 ? QFrame::StyledPanel : QFrame::NoFrame);
    setFocusPolicy((style & TabStop) != 0 ? Qt::StrongFocus : Qt::ClickFocus);
    m_layout.rows.SetDefaultSize(DefaultRowHeight(font()));
    m_layout.rows.ResetSizes();
    m_layout.columns.ResetSizes();
    SizesChanged();
    setVisible((style & Visible) != 0);
    return true;
}

void CGridCtrl::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_layout.rows.SetDefaultSize(DefaultRowHeight(font()));
        SizesChanged();
    }
}

int CGridCtrl::GetControlId() const {
    return m_controlId;
}

// ---- Shape

int CGridCtrl::GetRowCount() const {
    return m_layout.rows.Count();
}

int CGridCtrl::GetColumnCount() const {
    return m_layout.columns.Count();
}

int CGridCtrl::GetFixedRowCount() const {
    return m_layout.rows.FixedCount();
}

int CGridCtrl::GetFixedColumnCount() const {
    return m_layout.columns.FixedCount();
}

bool CGridCtrl::SetRowCount(int rows) {
    return SetLineCount(&CCellID::row, rows);
}

bool CGridCtrl::SetColumnCount(int columns) {
    return SetLineCount(&CCellID::col, columns);
}

bool CGridCtrl::SetFixedRowCount(int rows) {
    return SetFixedLineCount(&CCellID::row, rows);
}

bool CGridCtrl::SetFixedColumnCount(int columns) {
    return SetFixedLineCount(&CCellID::col, columns);
}

GridAxis& CGridCtrl::Axis(int CCellID::*line) {
    return line == &CCellID::row ? m_layout.rows : m_layout.columns;
}

bool CGridCtrl::SetLineCount(int CCellID::*line, int count) {
    if (count < 0) {
        return false;
    }
    const int present = Axis(line).Count();
    if (count > present) {
        InsertLines(line, present, count - present, CellAttributes::DefaultFormat);
    } else if (count < present) {
        RemoveLines(line, count, present - count);
    }
    return true;
}

bool CGridCtrl::SetFixedLineCount(int CCellID::*line, int count) {
    if (count < 0) {
        return false;
    }
    if (count > Axis(line).Count()) {
        SetLineCount(line, count);
    }
    Axis(line).SetFixedCount(count);
    GridSelection selection = m_selection;
    selection.LeaveFixed(m_layout.ScrollingCells());
    FollowShape(selection, m_layout.IsFixed(m_edit->Cell()) ? CCellID{} : m_edit->Cell());
    return true;
}

int CGridCtrl::InsertRow(const CString& heading, int before) {
    const int row = before == -1 ? GetRowCount() : before;
    if (row < 0 || row > GetRowCount()) {
        return -1;
    }
    if (GetColumnCount() == 0 && !heading.isEmpty()) {
        SetColumnCount(1);
    }
    InsertLines(&CCellID::row, row, 1, CellAttributes::DefaultFormat);
    if (!heading.isEmpty()) {
        SetItemText(row, 0, heading);
    }
    return row;
}

int CGridCtrl::InsertColumn(const CString& heading, unsigned format, int before) {
    const int column = before == -1 ? GetColumnCount() : before;
    if (column < 0 || column > GetColumnCount()) {
        return -1;
    }
    if (GetRowCount() == 0 && !heading.isEmpty()) {
        SetRowCount(1);
    }
    InsertLines(&CCellID::col, column, 1, format);
    if (!heading.isEmpty()) {
        SetItemText(0, column, heading);
    }
    return column;
}

bool CGridCtrl::DeleteRow(int row) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    RemoveLines(&CCellID::row, row, 1);
    return true;
}

bool CGridCtrl::DeleteNonFixedRows() {
    return SetRowCount(GetFixedRowCount());
}

void CGridCtrl::DeleteAllItems() {
    SetRowCount(0);
    SetColumnCount(0);
}

void CGridCtrl::InsertLines(int CCellID::*line, int at, int count, unsigned format) {
    GridAxis& axis = Axis(line);
    if (at < axis.FixedCount()) {
        axis.SetFixedCount(axis.FixedCount() + count);
    }
    if (line == &CCellID::row) {
        m_cells.InsertRows(at, count);
    } else {
        m_cells.InsertColumns(at, count, format);
    }
    axis.Insert(at, count);
    m_merges.InsertLines(line, at, count);
    GridSelection selection = m_selection;
    selection.InsertLines(line, at, count);
    CCellID edited = m_edit->Cell();
    ShiftForInsert(edited, line, at, count);
    m_announcer->LinesInserted(line, at, count);
    FollowShape(selection, edited);
}

void CGridCtrl::RemoveLines(int CCellID::*line, int at, int count) {
    GridAxis& axis = Axis(line);
    axis.SetFixedCount(axis.FixedCount() - std::clamp(axis.FixedCount() - at, 0, count));
    if (line == &CCellID::row) {
        m_cells.RemoveRows(at, count);
    } else {
        m_cells.RemoveColumns(at, count);
    }
    axis.Remove(at, count);
    m_merges.RemoveLines(line, at, count);
    GridSelection selection = m_selection;
    selection.RemoveLines(line, at, count);
    CCellID edited = m_edit->Cell();
    ShiftForRemove(edited, line, at, count);
    m_announcer->LinesRemoved(line, at, count);
    FollowShape(selection, edited);
}

void CGridCtrl::FollowShape(const GridSelection& selection, CCellID editedCell) {
    m_mouse->Reset();
    if (m_choices != nullptr) {
        m_choices->close();
    }
    m_edit->FollowCell(editedCell);
    SizesChanged();
    ApplySelection(selection);
}

// ---- Rows made when they are first touched

void CGridCtrl::FillMadeRow(int row) {
    if (m_rowMaker && row >= GetFixedRowCount()) {
        const int outer = std::exchange(m_rowBeingMade, row);
        m_rowMaker(row);
        m_rowBeingMade = outer;
    }
}

void CGridCtrl::RemakeRow(int row) {
    if (row >= GetFixedRowCount() && row < GetRowCount()) {
        RemakeRowRange(row, row);
    }
}

void CGridCtrl::RemakeRows() {
    if (GetFixedRowCount() < GetRowCount()) {
        RemakeRowRange(GetFixedRowCount(), GetRowCount() - 1);
    }
}

void CGridCtrl::RemakeRowRange(int first, int last) {
    m_cells.Unmake(first, last);
    if (m_choices != nullptr) {
        m_choices->close();
    }
    m_edit->RowsRemade(first, last);
    SizesChanged();
    m_announcer->RowsChanged(first, last);
}

// ---- Sizes

bool CGridCtrl::SetColumnWidth(int column, int width) {
    return SetLineSize(&CCellID::col, column, width);
}

bool CGridCtrl::SetRowHeight(int row, int height) {
    return SetLineSize(&CCellID::row, row, height);
}

bool CGridCtrl::SetLineSize(int CCellID::*line, int number, int size) {
    if (number < 0 || number >= Axis(line).Count() || size < 0) {
        return false;
    }
    Axis(line).SetSize(number, size);
    SizesChanged();
    return true;
}

int CGridCtrl::GetColumnWidth(int column) const {
    return column >= 0 && column < GetColumnCount() ? m_layout.columns.Size(column) : 0;
}

int CGridCtrl::GetRowHeight(int row) const {
    return row >= 0 && row < GetRowCount() ? m_layout.rows.Size(row) : 0;
}

void CGridCtrl::AutoSizeColumn(int column) {
    if (column < 0 || column >= GetColumnCount()) {
        return;
    }
    const int widest = std::max(viewport()->width(), GridMouse::SmallestColumn);
    int width = GridMouse::SmallestColumn;
    const auto takeIn = [&](int row) {
        const CGridCellBase& cell = *m_cells.At(row, column);
        const CCellRange block = MergeExtent(row, column);
        if (block.ColumnCount() == 1 && block.minRow == row) {
            width = std::max(width, cell.ContentWidth(FontOf(cell), widest) + AverageCharWidth());
        }
    };
    for (int row = 0; row < GetFixedRowCount(); ++row) {
        takeIn(row);
    }
    const GridAxis::Lines rows = m_layout.rows.VisibleScrolling(0, viewport()->height());
    for (int row = rows.first; row <= rows.last; ++row) {
        takeIn(row);
    }
    SetColumnWidth(column, std::min(width, widest));
}

// ---- Contents

CGridCellBase* CGridCtrl::Cell(int row, int column) {
    return const_cast<CGridCellBase*>(std::as_const(*this).Cell(row, column));
}

const CGridCellBase* CGridCtrl::Cell(int row, int column) const {
    if (row < 0 || row >= m_cells.RowCount()) {
        throw std::invalid_argument("row index beyond the row table");
    }
    return m_cells.At(row, column);
}

template <typename Value, typename Given>
bool CGridCtrl::SetInCell(int row, int column, void (CGridCellBase::*set)(Value), const Given& value) {
    CGridCellBase* cell = m_cells.At(row, column);
    if (cell == nullptr) {
        return false;
    }
    (cell->*set)(value);
    if (row != m_rowBeingMade) {
        RedrawCell(row, column);
    }
    return true;
}

template <typename Value>
Value CGridCtrl::GetFromCell(int row, int column, Value (CGridCellBase::*get)() const) const {
    const CGridCellBase* cell = m_cells.At(row, column);
    return cell != nullptr ? (cell->*get)() : Value();
}

bool CGridCtrl::SetItemText(int row, int column, const CString& text) {
    if (!SetInCell(row, column, &CGridCellBase::SetText, text)) {
        return false;
    }
    TellText({row, column});
    return true;
}

void CGridCtrl::TellText(CCellID cell) {
    if (cell.row != m_rowBeingMade) {
        m_announcer->TextChanged(cell);
    }
}

CString CGridCtrl::GetItemText(int row, int column) const {
    return GetFromCell(row, column, &CGridCellBase::GetText);
}

bool CGridCtrl::SetItemData(int row, int column, qint32 value) {
    return SetInCell(row, column, &CGridCellBase::SetData, value);
}

qint32 CGridCtrl::GetItemData(int row, int column) const {
    return GetFromCell(row, column, &CGridCellBase::GetData);
}

bool CGridCtrl::SetItemFormat(int row, int column, unsigned format) {
    return SetInCell(row, column, &CGridCellBase::SetFormat, format);
}

unsigned CGridCtrl::GetItemFormat(int row, int column) const {
    return GetFromCell(row, column, &CGridCellBase::GetFormat);
}

bool CGridCtrl::SetItemState(int row, int column, unsigned state) {
    return SetInCell(row, column, &CGridCellBase::SetState, state);
}

unsigned CGridCtrl::GetItemState(int row, int column) const {
    return GetFromCell(row, column, &CGridCellBase::GetState);
}

bool CGridCtrl::SetItem(const GridItem& item) {
    if (!SetInCell(item.row, item.col, &CGridCellBase::Set, item)) {
        return false;
    }
    TellText({item.row, item.col});
    return true;
}

bool CGridCtrl::SetCellType(int row, int column, CellMaker make) {
    const CGridCellBase* old = m_cells.At(row, column);
    if (old == nullptr || make == nullptr) {
        return false;
    }
    std::unique_ptr<CGridCellBase> cell = make();
    if (cell == nullptr) {
        return false;
    }
    cell->CopyFrom(*old);
    m_cells.Replace(row, column, std::move(cell));
    if (row != m_rowBeingMade) {
        RedrawCell(row, column);
    }
    return true;
}

// ---- Merging

bool CGridCtrl::MergeCells(int row, int column, int extraRows, int extraColumns) {
    const bool inside = m_layout.Holds(CCellID{row, column}) && extraRows >= 0 && extraColumns >= 0 &&
                        extraRows < GetRowCount() - row && extraColumns < GetColumnCount() - column;
    if (!inside) {
        return false;
    }
    if (extraRows == 0 && extraColumns == 0) {
        return true;
    }
    m_merges.Merge({row, column, row + extraRows, column + extraColumns});
    m_announcer->BlocksChanged();
    m_edit->Place();
    RedrawAll();
    return true;
}

CCellID CGridCtrl::MergeOrigin(int row, int column) const {
    const CCellRange block = m_merges.Extent({row, column});
    return {block.minRow, block.minCol};
}

CCellRange CGridCtrl::MergeExtent(int row, int column) const {
    return m_merges.Extent({row, column});
}

// ---- Focus and selection

CCellID CGridCtrl::GetFocusCell() const {
    return m_selection.Focus();
}

bool CGridCtrl::IsSelectable(CCellID cell) const {
    return m_layout.Holds(cell) && !m_layout.IsFixed(cell);
}

CCellRange CGridCtrl::RangeBetween(CCellID a, CCellID b) const {
    return m_merges.GrownToBlocks(
        {std::min(a.row, b.row), std::min(a.col, b.col), std::max(a.row, b.row), std::max(a.col, b.col)});
}

void CGridCtrl::ApplySelection(const GridSelection& selection) {
    const CCellID focus = selection.Focus();
    const bool focusChanged = m_selection.Focus() != focus;
    const bool rangesChanged = m_selection.Ranges() != selection.Ranges();
    m_selection = selection;
    if (!focusChanged && !rangesChanged) {
        return;
    }
    RedrawAll();
    const QPointer<CGridCtrl> alive(this);
    if (focusChanged) {
        Q_EMIT FocusCellChanged(focus.row, focus.col);
    }
    if (rangesChanged && !alive.isNull()) {
        Q_EMIT SelectionChanged();
    }
}

void CGridCtrl::SetFocusCell(CCellID cell) {
    GridSelection selection = m_selection;
    selection.Clear();
    if (!cell.IsValid()) {
        selection.SetFocus({});
        ApplySelection(selection);
        return;
    }
    if (!IsSelectable(cell)) {
        return;
    }
    const CCellRange block = MergeExtent(cell.row, cell.col);
    const CCellID origin{block.minRow, block.minCol};
    selection.SetFocus(origin);
    selection.SelectOnly(block, origin);
    EnsureVisible(origin.row, origin.col);
    ApplySelection(selection);
}

void CGridCtrl::FocusWithoutSelecting(CCellID cell) {
    if (IsSelectable(cell)) {
        GridSelection selection = m_selection;
        selection.SetFocus(MergeOrigin(cell.row, cell.col));
        ApplySelection(selection);
    }
}

bool CGridCtrl::IsSelected(int row, int column) const {
    return m_selection.IsSelected({row, column});
}

void CGridCtrl::SetSelectedRange(const CCellRange& range) {
    if (!IsValid(range) || m_layout.IsFixed({range.minRow, range.minCol})) {
        return;
    }
    GridSelection selection = m_selection;
    selection.SelectOnly(m_merges.GrownToBlocks(range), {range.minRow, range.minCol});
    ApplySelection(selection);
}

void CGridCtrl::ClearSelection() {
    GridSelection selection = m_selection;
    selection.Clear();
    ApplySelection(selection);
}

void CGridCtrl::SelectAllCells() {
    const CCellRange all = m_layout.ScrollingCells();
    SetSelectedRange(all);
}

void CGridCtrl::ExtendSelectionTo(CCellID cell) {
    if (!IsSelectable(cell)) {
        return;
    }
    const CCellID anchor = m_selection.Anchor();
    if (!anchor.IsValid()) {
        SetFocusCell(cell);
        return;
    }
    GridSelection selection = m_selection;
    selection.ReplaceLast(RangeBetween(anchor, cell));
    selection.SetFocus(MergeOrigin(cell.row, cell.col));
    EnsureVisible(cell.row, cell.col);
    ApplySelection(selection);
}

void CGridCtrl::DragSelectionTo(CCellID cell) {
    if (IsSelectable(cell) && m_selection.Anchor().IsValid()) {
        GridSelection selection = m_selection;
        selection.ReplaceLast(RangeBetween(m_selection.Anchor(), cell));
        ApplySelection(selection);
    }
}

void CGridCtrl::AddToSelection(CCellID cell) {
    if (!IsSelectable(cell)) {
        return;
    }
    const CCellID origin = MergeOrigin(cell.row, cell.col);
    GridSelection selection = m_selection;
    selection.Add(MergeExtent(cell.row, cell.col), origin);
    selection.SetFocus(origin);
    ApplySelection(selection);
}

void CGridCtrl::SelectLines(const CCellRange& lines, Qt::KeyboardModifiers modifiers) {
    const CCellID first{lines.minRow, lines.minCol};
    if (!IsValid(lines) || !IsSelectable(first)) {
        return;
    }
    const CCellRange grown = m_merges.GrownToBlocks(lines);
    GridSelection selection = m_selection;
    if ((modifiers & Qt::ShiftModifier) != 0 && selection.Anchor().IsValid()) {
        // Whole lines from the anchor's: the corner beyond them on both sides decides.
        const CCellID anchor = selection.Anchor();
        CCellRange both = RangeBetween(anchor, first);
        both = RangeBetween({both.minRow, both.minCol},
                            {std::max(both.maxRow, lines.maxRow), std::max(both.maxCol, lines.maxCol)});
        both.minRow = std::min(both.minRow, lines.minRow);
        both.minCol = std::min(both.minCol, lines.minCol);
        selection.ReplaceLast(both);
    } else if ((modifiers & Qt::ControlModifier) != 0) {
        selection.Add(grown, first);
        selection.SetFocus(MergeOrigin(first.row, first.col));
    } else {
        selection.SelectOnly(grown, first);
        selection.SetFocus(MergeOrigin(first.row, first.col));
    }
    ApplySelection(selection);
}

CCellRange CGridCtrl::GetSelectedCellRange() const {
    return m_selection.Bounds(GetRowCount(), GetColumnCount());
}

bool CGridCtrl::IsValid(const CCellRange& range) const {
    return m_layout.Holds(range);
}

// ---- Editing

CellEditing CGridCtrl::EditingOf(CCellID cell) const {
    if (!IsSelectable(cell) || MergeOrigin(cell.row, cell.col) != cell) {
        return CellEditing::None;
    }
    const CGridCellBase& source = *m_cells.At(cell.row, cell.col);
    return (source.GetState() & CellState::ReadOnly) == 0 ? source.Editing() : CellEditing::None;
}

bool CGridCtrl::IsCellEditable(int row, int column) const {
    return EditingOf({row, column}) != CellEditing::None;
}

bool CGridCtrl::OpenEditor(CCellID cell, int start) {
    if (!IsCellEditable(cell.row, cell.col)) {
        return false;
    }
    const QPointer<CGridCtrl> alive(this);
    EndEdit();
    // Ending another edit or moving the focus tells others, who may do anything.
    if (alive.isNull() || IsEditing()) {
        return false;
    }
    if (GetFocusCell() != cell) {
        SetFocusCell(cell);
    }
    if (alive.isNull() || IsEditing() || !IsCellEditable(cell.row, cell.col) || GetFocusCell() != cell) {
        return false;
    }
    EnsureVisible(cell.row, cell.col);
    if (EditingOf(cell) == CellEditing::Choice) {
        return OpenChoices(cell);
    }
    m_edit->Begin(cell, static_cast<InPlaceEdit::Start>(start));
    return true;
}

bool CGridCtrl::BeginEdit(int row, int column) {
    return OpenEditor({row, column}, static_cast<int>(InPlaceEdit::Start::AllSelected));
}

bool CGridCtrl::BeginEditAtEnd(int row, int column) {
    return OpenEditor({row, column}, static_cast<int>(InPlaceEdit::Start::CaretAtEnd));
}

bool CGridCtrl::BeginEditByTyping(const QEvent& event) {
    if (!OpenEditor(GetFocusCell(), static_cast<int>(InPlaceEdit::Start::Empty))) {
        return false;
    }
    if (IsEditing()) {
        const std::unique_ptr<QEvent> copy(event.clone());
        QCoreApplication::sendEvent(m_edit->Editor(), copy.get());
    }
    return true;
}

bool CGridCtrl::OpenChoices(CCellID cell) {
    const auto* combo = dynamic_cast<const CGridBtnCellCombo*>(m_cells.At(cell.row, cell.col));
    if (combo == nullptr) {
        return false;
    }
    if (m_choices != nullptr) {
        m_choices->close();
    }
    m_choices = new ComboList(combo->Choices(), combo->GetText(), this);
    m_choices->setAccessibleName(ColumnHeadingText(*this, cell.col));
    connect(m_choices, &ComboList::Chosen, this, [this, cell](const QString& text) {
        m_choices.clear();
        TakeEditedText(cell, text);
    });
    const QRect rect = CellRect(cell.row, cell.col) & viewport()->rect();
    m_choices->DropFrom(QRect(viewport()->mapToGlobal(rect.topLeft()), rect.size()));
    return true;
}

bool CGridCtrl::IsEditing() const {
    return m_edit->IsOn();
}

void CGridCtrl::EndEdit() {
    m_edit->End();
}

void CGridCtrl::CancelEdit() {
    m_edit->Cancel();
}

void CGridCtrl::TakeEditedText(CCellID cell, const CString& text) {
    if (SetItemText(cell.row, cell.col, text)) {
        Q_EMIT EndLabelEdit(cell.row, cell.col);
    }
}

int CGridCtrl::ButtonAt(CCellID cell, const QPoint& position) const {
    const CGridCellBase* source = m_cells.At(cell.row, cell.col);
    if (source == nullptr) {
        return -1;
    }
    return source->BtnAt(CellRect(cell.row, cell.col).adjusted(0, 0, -1, -1), FontOf(*source), position);
}

bool CGridCtrl::PressButton(CCellID cell, int button) {
    CGridCellBase* source = m_cells.At(cell.row, cell.col);
    if (source == nullptr || !IsSelectable(cell)) {
        return false;
    }
    if (source->Editing() == CellEditing::Choice) {
        return BeginEdit(cell.row, cell.col);
    }
    if (!source->PressBtn(button)) {
        return false;
    }
    RedrawCell(cell.row, cell.col);
    Q_EMIT ButtonClicked(cell.row, cell.col, button);
    return true;
}

int CGridCtrl::PressedButton(CCellID cell) const {
    return m_mouse->PressedCell() == cell ? m_mouse->PressedButton() : -1;
}

}  // namespace quorvane
