#include "grid/input/grid_entries.h"

#include <algorithm>
#include <utility>

#include "grid/grid_core.h"
#include "grid/output/separated_text.h"

namespace quorvane {
namespace {

CCellID FirstSelected(const GridCore& core) {
    const CCellRange selected = core.SelectedRange();
    const CCellID first{selected.minRow, selected.minCol};
    return core.Layout().Holds(first) ? core.Origin(first) : core.Focus();
}

// The selected ranges, without their overlaps. The focus cell when nothing is selected.
std::vector<CCellRange> SelectedOnce(const GridCore& core) {
    GridSelection selection;
    for (const CCellRange& range : core.Selection().Ranges()) {
        selection.Remove(range);
        selection.Add(range, {});
    }
    if (selection.Ranges().empty() && core.Focus().IsValid()) {
        selection.Add(core.Extent(core.Focus()), {});
    }
    return selection.Ranges();
}

bool TakesEntry(const GridCore& core, CCellID cell, const CString& text) {
    return core.Takes(cell, text) && (text.isEmpty() || !core.entryCheck || core.entryCheck(cell, text, {}));
}

// Whether it will, when other texts have been entered into the row. They do not change what is typed into.
bool WillTakeEntry(const GridCore& core, CCellID cell, const CString& text, const RowTexts& before) {
    const bool isTyped = core.EditingOf(cell) == CellEditing::Text;
    return isTyped || before.empty() || !core.entryCheck ? TakesEntry(core, cell, text)
                                                         : core.entryCheck(cell, text, before);
}

PasteLoss::Refused::Reason WhyRefused(const GridCore& core, CCellID cell, const CString& text) {
    const CellEditing editing = core.EditingOf(cell);
    if (editing == CellEditing::Text) {
        return PasteLoss::Refused::NoSuchValue;
    }
    const bool isChosen = editing == CellEditing::Choice || core.Takes(cell, text);
    return isChosen ? PasteLoss::Refused::NoChoice : PasteLoss::Refused::ReadOnly;
}

void AddWhereChanged(std::vector<GridEntry>& entries, const GridCore& core, CCellID cell,
                     const CString& text) {
    if (TakesEntry(core, cell, text) && core.Text(cell) != text) {
        entries.push_back({cell, text});
    }
}

// Calls visit(cell) for the cells of a range, row by row.
template <typename Visit>
void ForEachCell(const CCellRange& range, Visit visit) {
    for (int row = range.minRow; row <= range.maxRow; ++row) {
        for (int column = range.minCol; column <= range.maxCol; ++column) {
            visit(CCellID{row, column});
        }
    }
}

// The rows of a selected range that a fill reaches. A range of several rows does not fill the row for new
// entries, which would begin a new one.
CCellRange FilledPart(const GridCore& core, CCellRange range) {
    const bool reachesNewRow = core.hasAppendRow && range.maxRow == core.RowCount() - 1;
    range.maxRow -= reachesNewRow && range.RowCount() > 1 ? 1 : 0;
    return range;
}

bool IsMultiple(int whole, int part) {
    return whole > part && whole % part == 0;
}

// How many rows and columns a text has to be repeated to, or its own number.
std::pair<int, int> RepeatedSize(const GridCore& core, int rows, int columns) {
    const std::vector<CCellRange>& ranges = core.Selection().Ranges();
    if (ranges.size() != 1) {
        return {rows, columns};
    }
    const CCellRange range = FilledPart(core, ranges.front());
    const bool byRows = IsMultiple(range.RowCount(), rows);
    const bool byColumns = IsMultiple(range.ColumnCount(), columns);
    const bool fits = (byRows || range.RowCount() == rows) && (byColumns || range.ColumnCount() == columns);
    return fits ? std::pair(range.RowCount(), range.ColumnCount()) : std::pair(rows, columns);
}

std::vector<GridEntry> EntriesOf(const TextTable& table, CCellID start, int rows) {
    std::vector<GridEntry> entries;
    for (int row = 0; row < rows; ++row) {
        CCellID cell{start.row + row, start.col};
        for (const CString& text : table[static_cast<std::size_t>(row) % table.size()]) {
            entries.push_back({cell, text});
            ++cell.col;
        }
    }
    return entries;
}

}  // namespace

std::vector<GridEntry> MoveEntries(const GridCore& core, const CCellRange& block, CCellID start,
                                   bool isCopy) {
    std::vector<GridEntry> entries;
    std::vector<GridEntry> cleared;
    const CCellRange written{start.row, start.col, start.row + block.maxRow - block.minRow,
                             start.col + block.maxCol - block.minCol};
    ForEachCell(block, [&](CCellID cell) {
        const CCellID target{start.row + cell.row - block.minRow, start.col + cell.col - block.minCol};
        if (core.Origin(cell) != cell) {
            return;
        }
        entries.push_back({target, core.Text(cell)});
        if (!isCopy && TakesEntry(core, target, core.Text(cell)) && !written.Contains(cell)) {
            AddWhereChanged(cleared, core, cell, {});
        }
    });
    entries.insert(entries.end(), cleared.begin(), cleared.end());
    return entries;
}

std::vector<GridEntry> PasteEntries(const GridCore& core, const CString& text) {
    TextTable table = ReadTabText(text);
    const CCellID start = FirstSelected(core);
    if (!start.IsValid() || table.empty()) {
        return {};
    }
    std::size_t width = 1;
    for (const std::vector<CString>& texts : table) {
        width = std::max(width, texts.size());
    }
    const auto [rows, columns] = RepeatedSize(core, static_cast<int>(table.size()), static_cast<int>(width));
    for (std::vector<CString>& texts : table) {
        for (std::size_t column = width; column < static_cast<std::size_t>(columns); ++column) {
            texts.resize(std::max(texts.size(), column));
            texts.push_back(texts[column % width]);
        }
    }
    return EntriesOf(table, start, rows);
}

std::vector<GridEntry> FillEntries(const GridCore& core, const CString& text) {
    std::vector<GridEntry> entries;
    for (const CCellRange& range : SelectedOnce(core)) {
        ForEachCell(FilledPart(core, range),
                    [&](CCellID cell) { AddWhereChanged(entries, core, cell, text); });
    }
    return entries;
}

std::vector<GridEntry> FillDownEntries(const GridCore& core) {
    std::vector<GridEntry> entries;
    for (const CCellRange& selected : SelectedOnce(core)) {
        CCellRange range = FilledPart(core, selected);
        const int source = selected.RowCount() > 1 ? range.minRow++ : range.minRow - 1;
        if (source >= core.Layout().rows.FixedCount()) {
            ForEachCell(range, [&](CCellID cell) {
                AddWhereChanged(entries, core, cell, core.Text(core.Origin({source, cell.col})));
            });
        }
    }
    return entries;
}

PasteLoss LossOf(const GridCore& core, const std::vector<GridEntry>& entries) {
    PasteLoss loss{.texts = static_cast<int>(entries.size()), .lastRow = core.RowCount() - 1};
    RowTexts before;
    int row = -1;
    for (const auto& [cell, text] : entries) {
        const CCellID judge{std::min(cell.row, loss.lastRow), cell.col};
        if (std::exchange(row, cell.row) != cell.row) {
            before.clear();
        }
        if (!text.isEmpty() && cell.col >= core.ColumnCount()) {
            ++loss.beyondColumns;
        } else if (!text.isEmpty()) {
            loss.belowRows += cell.row > loss.lastRow ? 1 : 0;
            if (WillTakeEntry(core, judge, text, before)) {
                before.emplace_back(cell.col, text);
            } else if (core.Text(cell) != text) {
                loss.refused.push_back({cell, text, WhyRefused(core, judge, text)});
            }
        }
    }
    return loss;
}

GridEntries::GridEntries(const GridCore& core, CCellID anchor, std::vector<GridEntry> entries)
    : m_core(core),
      m_entries(std::move(entries)),
      m_anchor(anchor),
      m_focus(anchor),
      m_rowCount(core.RowCount()),
      m_columnCount(core.ColumnCount()) {}

bool GridEntries::FollowFocus() {
    const bool sameShape = m_core.RowCount() == m_rowCount && m_core.ColumnCount() == m_columnCount;
    const CCellID focus = m_core.Focus();
    if (!focus.IsValid() || (sameShape && focus != m_focus)) {
        return false;
    }
    m_focus = focus;
    m_rowCount = m_core.RowCount();
    m_columnCount = m_core.ColumnCount();
    return true;
}

std::optional<GridEntry> GridEntries::Next() {
    if (!FollowFocus()) {
        return std::nullopt;
    }
    while (m_next < m_entries.size()) {
        GridEntry& entry = m_entries[m_next++];
        const CCellID cell{entry.cell.row + m_focus.row - m_anchor.row,
                           entry.cell.col + m_focus.col - m_anchor.col};
        if (TakesEntry(m_core, cell, entry.text)) {
            return GridEntry{cell, std::move(entry.text)};
        }
    }
    return std::nullopt;
}

}  // namespace quorvane
