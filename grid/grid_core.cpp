#include "grid/grid_core.h"

#include <algorithm>

#include "grid/cells/cell_text.h"
#include "grid/cells/grid_btn_cell.h"

namespace quorvane {
namespace {

// Adds a range, or takes it away when it is selected besides others.
void ToggleRange(GridSelection& selection, const CCellRange& range, CCellID anchor) {
    GridSelection without = selection;
    without.Remove(range);
    if (selection.Covers(range) && !without.Ranges().empty()) {
        selection = without;
        selection.SetAnchor({});
    } else {
        selection.Add(range, anchor);
    }
}

CString Joined(const CString& text, const CString& further) {
    return text.isEmpty() || further.isEmpty() ? text + further : text + u' ' + further;
}

}  // namespace

GridCore::GridCore(int rowHeight, int columnWidth)
    : m_layout{GridAxis(rowHeight), GridAxis(columnWidth)}, m_cells([this](int row) { FillMadeRow(row); }) {}

// ---- Shape and sizes

bool GridCore::SetCount(Qt::Orientation lines, int count) {
    if (count < 0) {
        return false;
    }
    const int present = m_layout.Axis(lines).Count();
    if (count > present) {
        InsertLines(lines, present, count - present, CellAttributes::DefaultFormat);
    } else if (count < present) {
        RemoveLines(lines, count, present - count);
    }
    return true;
}

bool GridCore::SetFixedCount(Qt::Orientation lines, int count) {
    if (count < 0) {
        return false;
    }
    GridAxis& axis = m_layout.Axis(lines);
    if (count > axis.Count()) {
        SetCount(lines, count);
    }
    axis.SetFixedCount(count);
    if (m_listener != nullptr) {
        m_listener->FixedLinesChanged();
    }
    GridSelection selection = m_selection;
    selection.LeaveFixed(m_layout.ScrollingCells());
    Apply(selection);
    return true;
}

int GridCore::InsertRow(const CString& heading, int before) {
    const int row = before == -1 ? RowCount() : before;
    if (row < 0 || row > RowCount()) {
        return -1;
    }
    if (ColumnCount() == 0 && !heading.isEmpty()) {
        SetCount(Qt::Horizontal, 1);
    }
    InsertLines(Qt::Vertical, row, 1, CellAttributes::DefaultFormat);
    if (!heading.isEmpty()) {
        SetText({row, 0}, heading);
    }
    return row;
}

int GridCore::InsertColumn(const CString& heading, unsigned format, int before) {
    const int column = before == -1 ? ColumnCount() : before;
    if (column < 0 || column > ColumnCount()) {
        return -1;
    }
    if (RowCount() == 0 && !heading.isEmpty()) {
        SetCount(Qt::Vertical, 1);
    }
    InsertLines(Qt::Horizontal, column, 1, format);
    if (!heading.isEmpty()) {
        SetText({0, column}, heading);
    }
    return column;
}

bool GridCore::DeleteRow(int row) {
    if (row < 0 || row >= RowCount()) {
        return false;
    }
    RemoveLines(Qt::Vertical, row, 1);
    return true;
}

void GridCore::InsertLines(Qt::Orientation lines, int at, int count, unsigned format) {
    GridAxis& axis = m_layout.Axis(lines);
    if (at < axis.FixedCount()) {
        axis.SetFixedCount(axis.FixedCount() + count);
    }
    if (lines == Qt::Vertical) {
        m_cells.InsertRows(at, count);
    } else {
        m_cells.InsertColumns(at, count, format);
    }
    axis.Insert(at, count);
    m_merges.InsertLines(lines, at, count);
    if (m_listener != nullptr) {
        m_listener->LinesInserted(lines, at, count);
    }
    GridSelection selection = m_selection;
    selection.InsertLines(lines, at, count);
    Apply(selection);
}

void GridCore::RemoveLines(Qt::Orientation lines, int at, int count) {
    GridAxis& axis = m_layout.Axis(lines);
    axis.SetFixedCount(axis.FixedCount() - std::clamp(axis.FixedCount() - at, 0, count));
    if (lines == Qt::Vertical) {
        m_cells.RemoveRows(at, count);
    } else {
        m_cells.RemoveColumns(at, count);
    }
    axis.Remove(at, count);
    m_merges.RemoveLines(lines, at, count);
    if (m_listener != nullptr) {
        m_listener->LinesRemoved(lines, at, count);
    }
    GridSelection selection = m_selection;
    selection.RemoveLines(lines, at, count);
    Apply(selection);
}

bool GridCore::SetSize(Qt::Orientation lines, int line, int size) {
    GridAxis& axis = m_layout.Axis(lines);
    if (line < 0 || line >= axis.Count() || size < 0) {
        return false;
    }
    axis.SetSize(line, size);
    if (m_listener != nullptr) {
        m_listener->SizesChanged();
    }
    return true;
}

int GridCore::NeededWidth(int column, int least, int most) const {
    int width = least;
    const auto takeIn = [&](int row) {
        const CCellRange block = Extent({row, column});
        if (block.ColumnCount() == 1 && block.minRow == row) {
            const CGridCellBase& cell = *Cell({row, column});
            width = std::max(width, cell.ContentWidth(FontOf(cell), most) + AverageCharWidth());
        }
    };
    for (int row = 0; row < m_layout.rows.FixedCount(); ++row) {
        takeIn(row);
    }
    const GridAxis::Lines visible = m_layout.rows.VisibleScrolling(0, m_layout.rows.ViewLength());
    for (int row = visible.first; row <= visible.last; ++row) {
        takeIn(row);
    }
    return std::min(width, most);
}

QRect GridCore::CellRect(CCellID cell) const {
    return m_layout.Holds(cell) ? m_layout.BlockRect(Extent(cell)) : QRect();
}

CCellID GridCore::CellAt(const QPoint& position) const {
    const CCellID cell = m_layout.CellAt(position);
    return cell.IsValid() ? Origin(cell) : cell;
}

// ---- Cells

void GridCore::FillMadeRow(int row) {
    if (m_rowMaker && row >= m_layout.rows.FixedCount()) {
        const int outer = std::exchange(m_rowBeingMade, row);
        m_rowMaker(row);
        m_rowBeingMade = outer;
    }
}

void GridCore::RemakeRows(int first, int last) {
    first = std::max(first, m_layout.rows.FixedCount());
    last = std::min(last, RowCount() - 1);
    if (first <= last) {
        m_cells.Unmake(first, last);
        if (m_listener != nullptr) {
            m_listener->RowsRemade(first, last);
        }
    }
}

// A row that is being made is not announced: nobody has seen its cells with other contents.
void GridCore::TellCell(CCellID cell, bool text) {
    if (m_listener == nullptr || cell.row == m_rowBeingMade) {
        return;
    }
    m_listener->CellChanged(cell);
    if (text) {
        m_listener->TextChanged(cell);
    }
}

CString GridCore::Text(CCellID cell) const {
    const CGridCellBase* source = Cell(cell);
    return source != nullptr ? source->GetText() : CString();
}

bool GridCore::SetText(CCellID cell, const CString& text) {
    CGridCellBase* source = Cell(cell);
    if (source == nullptr) {
        return false;
    }
    source->SetText(text);
    TellCell(cell, true);
    return true;
}

bool GridCore::SetItem(const GridItem& item) {
    const CCellID cell{item.row, item.col};
    CGridCellBase* source = Cell(cell);
    if (source == nullptr) {
        return false;
    }
    source->Set(item);
    TellCell(cell, (item.mask & ItemMask::Text) != 0);
    return true;
}

bool GridCore::SetCellType(CCellID cell, CellMaker make) {
    const CGridCellBase* old = Cell(cell);
    std::unique_ptr<CGridCellBase> made = old != nullptr && make != nullptr ? make() : nullptr;
    if (made == nullptr) {
        return false;
    }
    made->CopyFrom(*old);
    m_cells.Replace(cell.row, cell.col, std::move(made));
    TellCell(cell, false);
    return true;
}

bool GridCore::PressBtn(CCellID cell, int button) {
    CGridCellBase* source = IsSelectable(cell) ? Cell(cell) : nullptr;
    if (source == nullptr || !source->PressBtn(button)) {
        return false;
    }
    TellCell(cell, false);
    return true;
}

CString GridCore::RowHeadingText(int row) const {
    CString text;
    for (int column = 0; column < m_layout.columns.FixedCount(); ++column) {
        const CCellID origin = Origin({row, column});
        text = origin.col == column ? Joined(text, Text(origin)) : text;
    }
    return text;
}

CString GridCore::ColumnHeadingText(int column) const {
    CString text;
    for (int row = 0; row < m_layout.rows.FixedCount(); ++row) {
        const CCellID origin = Origin({row, column});
        text = origin.row == row ? Joined(text, Text(origin)) : text;
    }
    return text;
}

// ---- Merged blocks

bool GridCore::Merge(CCellID cell, int extraRows, int extraColumns) {
    const bool inside = m_layout.Holds(cell) && extraRows >= 0 && extraColumns >= 0 &&
                        extraRows < RowCount() - cell.row && extraColumns < ColumnCount() - cell.col;
    if (inside && (extraRows > 0 || extraColumns > 0)) {
        m_merges.Merge({cell.row, cell.col, cell.row + extraRows, cell.col + extraColumns});
        if (m_listener != nullptr) {
            m_listener->BlocksChanged();
        }
    }
    return inside;
}

CCellID GridCore::Origin(CCellID cell) const {
    const CCellRange block = Extent(cell);
    return {block.minRow, block.minCol};
}

// ---- Focus and selection

CCellRange GridCore::RangeBetween(CCellID a, CCellID b) const {
    return m_merges.GrownToBlocks(
        {std::min(a.row, b.row), std::min(a.col, b.col), std::max(a.row, b.row), std::max(a.col, b.col)});
}

void GridCore::Apply(const GridSelection& selection) {
    const bool focus = m_selection.Focus() != selection.Focus();
    const bool ranges = m_selection.Ranges() != selection.Ranges();
    m_selection = selection;
    if (m_listener != nullptr && (focus || ranges)) {
        m_listener->SelectionChanged(focus, ranges);
    }
}

void GridCore::SetFocus(CCellID cell) {
    GridSelection selection = m_selection;
    selection.Clear();
    if (!cell.IsValid()) {
        selection.SetFocus({});
        Apply(selection);
    } else if (IsSelectable(cell)) {
        const CCellID origin = Origin(cell);
        selection.SetFocus(origin);
        selection.SelectOnly(Extent(cell), origin);
        Apply(selection);
    }
}

void GridCore::FocusWithoutSelecting(CCellID cell) {
    if (IsSelectable(cell)) {
        GridSelection selection = m_selection;
        selection.SetFocus(Origin(cell));
        Apply(selection);
    }
}

void GridCore::SelectRange(const CCellRange& range) {
    if (m_layout.Holds(range) && !m_layout.IsFixed({range.minRow, range.minCol})) {
        GridSelection selection = m_selection;
        selection.SelectOnly(m_merges.GrownToBlocks(range), {range.minRow, range.minCol});
        Apply(selection);
    }
}

void GridCore::ClearSelection() {
    GridSelection selection = m_selection;
    selection.Clear();
    Apply(selection);
}

void GridCore::ExtendSelection(CCellID cell, bool moveFocus) {
    const CCellID anchor = m_selection.Anchor();
    if (!IsSelectable(cell) || !anchor.IsValid()) {
        if (moveFocus) {
            SetFocus(cell);
        }
        return;
    }
    GridSelection selection = m_selection;
    selection.ReplaceLast(RangeBetween(anchor, cell));
    if (moveFocus) {
        selection.SetFocus(Origin(cell));
    }
    Apply(selection);
}

void GridCore::AddToSelection(CCellID cell) {
    if (IsSelectable(cell)) {
        GridSelection selection = m_selection;
        ToggleRange(selection, Extent(cell), Origin(cell));
        selection.SetFocus(Origin(cell));
        Apply(selection);
    }
}

void GridCore::SelectWhole(Qt::Orientation lines) {
    const CCellRange all = m_layout.ScrollingCells();
    GridSelection selection = m_selection;
    std::vector<CCellRange> ranges = selection.Ranges();
    if (ranges.empty() && Focus().IsValid()) {
        ranges = {Extent(Focus())};
    }
    selection.Clear();
    for (CCellRange range : ranges) {
        if (lines == Qt::Vertical) {
            range.minCol = all.minCol;
            range.maxCol = all.maxCol;
        } else {
            range.minRow = all.minRow;
            range.maxRow = all.maxRow;
        }
        selection.Add(m_merges.GrownToBlocks(range), {range.minRow, range.minCol});
    }
    Apply(selection);
}

void GridCore::SelectLines(const CCellRange& lines, Qt::KeyboardModifiers modifiers) {
    const CCellID first{lines.minRow, lines.minCol};
    if (!m_layout.Holds(lines) || !IsSelectable(first)) {
        return;
    }
    const CCellRange grown = m_merges.GrownToBlocks(lines);
    GridSelection selection = m_selection;
    if ((modifiers & Qt::ShiftModifier) != 0 && selection.Anchor().IsValid()) {
        // The lines reach over the whole table, so both corners of the clicked ones count.
        const CCellRange both = RangeBetween(selection.Anchor(), first);
        selection.ReplaceLast(
            RangeBetween({both.minRow, both.minCol},
                         {std::max(both.maxRow, lines.maxRow), std::max(both.maxCol, lines.maxCol)}));
        Apply(selection);
        return;
    }
    if ((modifiers & Qt::ControlModifier) != 0) {
        ToggleRange(selection, grown, first);
    } else {
        selection.SelectOnly(grown, first);
    }
    selection.SetFocus(Origin(first));
    Apply(selection);
}

// ---- What the user may change

CellEditing GridCore::EditingOf(CCellID cell) const {
    if (!IsSelectable(cell) || Origin(cell) != cell) {
        return CellEditing::None;
    }
    const CGridCellBase* source = Cell(cell);
    const bool writable = source != nullptr && (source->GetState() & CellState::ReadOnly) == 0;
    return writable ? source->Editing() : CellEditing::None;
}

bool GridCore::Takes(CCellID cell, const CString& text) const {
    const CGridCellBase* source = IsSelectable(cell) && Origin(cell) == cell ? Cell(cell) : nullptr;
    switch (EditingOf(cell)) {
        case CellEditing::Text:
            return true;
        case CellEditing::Choice: {
            const auto* combo = dynamic_cast<const CGridBtnCellCombo*>(source);
            return combo != nullptr && std::ranges::find(combo->Choices(), text) != combo->Choices().end();
        }
        default:
            return source != nullptr && (source->GetState() & CellState::TakesTexts) != 0 && !text.isEmpty();
    }
}

}  // namespace quorvane
