#include "grid/output/grid_clipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QPointer>
#include <algorithm>

#include "grid/grid_ctrl.h"
#include "grid/output/tab_text.h"

namespace quorvane {
namespace {

struct SelectedLines {
    std::vector<int> rows;
    std::vector<int> columns;
};

// The rows and columns in which something is selected.
SelectedLines LinesOf(const CGridCtrl& grid) {
    SelectedLines lines;
    const auto holds = [](int line, int first, int last) { return line >= first && line <= last; };
    const std::vector<CCellRange>& ranges = grid.Selection().Ranges();
    const CCellRange bounds = grid.GetSelectedCellRange();
    for (int row = bounds.minRow; row <= bounds.maxRow; ++row) {
        if (std::ranges::any_of(ranges,
                                [&](const auto& range) { return holds(row, range.minRow, range.maxRow); })) {
            lines.rows.push_back(row);
        }
    }
    for (int column = bounds.minCol; column <= bounds.maxCol; ++column) {
        if (std::ranges::any_of(
                ranges, [&](const auto& range) { return holds(column, range.minCol, range.maxCol); })) {
            lines.columns.push_back(column);
        }
    }
    return lines;
}

bool IsShown(const CGridCtrl& grid, CCellID cell) {
    return grid.MergeOrigin(cell.row, cell.col) == cell;
}

TextTable SelectedTexts(const CGridCtrl& grid) {
    const SelectedLines lines = LinesOf(grid);
    TextTable table;
    for (const int row : lines.rows) {
        std::vector<CString>& texts = table.emplace_back();
        for (const int column : lines.columns) {
            const bool copied = grid.IsSelected(row, column) && IsShown(grid, {row, column});
            texts.push_back(copied ? grid.GetItemText(row, column) : CString());
        }
    }
    if (table.empty() && grid.GetFocusCell().IsValid()) {
        table.push_back({grid.GetItemText(grid.GetFocusCell().row, grid.GetFocusCell().col)});
    }
    return table;
}

bool Takes(const CGridCtrl& grid, CCellID cell, const CString& text) {
    if (grid.EditingOf(cell) != CellEditing::Choice) {
        return grid.EditingOf(cell) == CellEditing::Text;
    }
    const auto* combo = dynamic_cast<const CGridBtnCellCombo*>(grid.Cell(cell.row, cell.col));
    return combo != nullptr && std::ranges::find(combo->Choices(), text) != combo->Choices().end();
}

// Where a block that is pasted begins: the focus cell, which moves when those who are told of a pasted cell
// insert or delete rows.
class PastePlace {
public:
    explicit PastePlace(CGridCtrl& grid) : m_grid(&grid) { Remember(); }

    CGridCtrl* Grid() const { return m_grid; }
    CCellID At(int rowsDown, int columnsRight) const {
        return {m_start.row + rowsDown, m_start.col + columnsRight};
    }
    // After somebody was told: false when the place is lost.
    bool Follow() {
        if (m_grid.isNull() || m_grid->IsEditing() || !m_grid->GetFocusCell().IsValid()) {
            return false;
        }
        const bool sameShape = m_grid->GetRowCount() == m_rows && m_grid->GetColumnCount() == m_columns;
        if (sameShape && m_grid->GetFocusCell() != m_start) {
            return false;  // somebody has moved the focus elsewhere
        }
        Remember();
        return true;
    }

private:
    void Remember() {
        m_start = m_grid->GetFocusCell();
        m_rows = m_grid->GetRowCount();
        m_columns = m_grid->GetColumnCount();
    }

    QPointer<CGridCtrl> m_grid;
    CCellID m_start;
    int m_rows = 0;
    int m_columns = 0;
};

void Paste(CGridCtrl& grid, const TextTable& table) {
    PastePlace place(grid);
    for (int row = 0; row < static_cast<int>(table.size()); ++row) {
        const std::vector<CString>& texts = table[static_cast<std::size_t>(row)];
        for (int column = 0; column < static_cast<int>(texts.size()); ++column) {
            const CString& text = texts[static_cast<std::size_t>(column)];
            const CCellID cell = place.At(row, column);
            if (!Takes(grid, cell, text)) {
                continue;
            }
            grid.TakeEditedText(cell, text);
            if (!place.Follow()) {
                return;
            }
        }
    }
}

}  // namespace

bool CopySelection(const CGridCtrl& grid) {
    const TextTable table = SelectedTexts(grid);
    if (table.empty()) {
        return false;
    }
    QApplication::clipboard()->setText(WriteTabText(table));
    return true;
}

bool PasteAtFocus(CGridCtrl& grid) {
    const TextTable table = ReadTabText(QApplication::clipboard()->text());
    if (table.empty() || !grid.GetFocusCell().IsValid()) {
        return false;
    }
    Paste(grid, table);
    return true;
}

}  // namespace quorvane
