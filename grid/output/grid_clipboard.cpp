#include "grid/output/grid_clipboard.h"

#include <algorithm>

#include "grid/grid_core.h"

namespace quorvane {
namespace {

// The numbers in first..last that lie between both edges of some range.
std::vector<int> SelectedLines(const std::vector<CCellRange>& ranges, int first, int last,
                               int CCellRange::*minimum, int CCellRange::*maximum) {
    std::vector<int> lines;
    for (int line = first; line <= last; ++line) {
        if (std::ranges::any_of(ranges, [&](const CCellRange& range) {
                return line >= range.*minimum && line <= range.*maximum;
            })) {
            lines.push_back(line);
        }
    }
    return lines;
}

CCellID PasteStart(const GridCore& core) {
    const CCellRange selected = core.SelectedRange();
    const CCellID first{selected.minRow, selected.minCol};
    return first.IsValid() ? core.Origin(first) : core.Focus();
}

}  // namespace

std::optional<CString> CopiedText(const GridCore& core) {
    const std::vector<CCellRange>& ranges = core.Selection().Ranges();
    if (ranges.empty()) {
        return core.Focus().IsValid() ? std::optional(WriteTabText({{core.Text(core.Focus())}}))
                                      : std::nullopt;
    }
    const CCellRange bounds = core.SelectedRange();
    const std::vector<int> columns =
        SelectedLines(ranges, bounds.minCol, bounds.maxCol, &CCellRange::minCol, &CCellRange::maxCol);
    TextTable table;
    for (const int row :
         SelectedLines(ranges, bounds.minRow, bounds.maxRow, &CCellRange::minRow, &CCellRange::maxRow)) {
        std::vector<CString>& texts = table.emplace_back();
        for (const int column : columns) {
            const CCellID cell{row, column};
            const bool copied = core.Selection().IsSelected(cell) && core.Origin(cell) == cell;
            texts.push_back(copied ? core.Text(cell) : CString());
        }
    }
    return WriteTabText(table);
}

PasteLoss LossOfPaste(const GridCore& core, const CString& text) {
    PasteLoss loss{.lastRow = core.RowCount() - 1};
    CCellID cell = PasteStart(core);
    if (!cell.IsValid()) {
        return loss;
    }
    const int firstColumn = cell.col;
    for (const std::vector<CString>& texts : ReadTabText(text)) {
        cell.col = firstColumn;
        for (const CString& field : texts) {
            ++loss.texts;
            const CCellID judge{std::min(cell.row, loss.lastRow), cell.col};
            if (!field.isEmpty() && cell.col >= core.ColumnCount()) {
                ++loss.beyondColumns;
            } else if (!field.isEmpty()) {
                loss.belowRows += cell.row > loss.lastRow ? 1 : 0;
                if (!core.Takes(judge, field) && core.Text(cell) != field) {
                    loss.refused.push_back({cell, field, core.EditingOf(judge) == CellEditing::Choice});
                }
            }
            ++cell.col;
        }
        ++cell.row;
    }
    return loss;
}

GridPaste::GridPaste(const GridCore& core, const CString& text)
    : m_core(core),
      m_start(PasteStart(core)),
      m_rowCount(core.RowCount()),
      m_columnCount(core.ColumnCount()) {
    if (m_start.IsValid()) {
        m_table = ReadTabText(text);
    }
}

bool GridPaste::FollowFocus() {
    const bool sameShape = m_core.RowCount() == m_rowCount && m_core.ColumnCount() == m_columnCount;
    const CCellID focus = m_core.Focus();
    if (!focus.IsValid() || (sameShape && focus != m_start)) {
        return false;
    }
    m_start = focus;
    m_rowCount = m_core.RowCount();
    m_columnCount = m_core.ColumnCount();
    return true;
}

std::optional<GridPaste::Target> GridPaste::Next() {
    if (!FollowFocus()) {
        m_table.clear();
    }
    for (; !IsDone(); ++m_row, m_column = 0) {
        const std::vector<CString>& texts = m_table[static_cast<std::size_t>(m_row)];
        while (m_column < static_cast<int>(texts.size())) {
            const CString& text = texts[static_cast<std::size_t>(m_column)];
            const CCellID cell{m_start.row + m_row, m_start.col + m_column++};
            if (m_core.Takes(cell, text)) {
                return Target{cell, text};
            }
        }
    }
    return std::nullopt;
}

}  // namespace quorvane
