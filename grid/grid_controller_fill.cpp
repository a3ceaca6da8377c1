// How GridController changes many cells at once, each time as one step for the editor; and its menu.
#include <QApplication>
#include <QClipboard>
#include <algorithm>
#include <optional>
#include <utility>

#include "grid/grid_controller.h"
#include "grid/output/grid_clipboard.h"
#include "grid/output/separated_text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

bool GridController::Copy() {
    const std::optional<CString> text = CopiedText(m_core);
    if (text) {
        QApplication::clipboard()->setText(*text);
    }
    return text.has_value();
}

bool GridController::MayLose(const PasteLoss& loss) const {
    if (!m_askBeforePaste) {
        return true;
    }
    const PasteQuestion ask = m_askBeforePaste;  // the answer may take the grid away
    return (loss.beyondColumns == 0 && loss.belowRows == 0 && loss.refused.empty()) || ask(loss);
}

bool GridController::Paste() {
    const CString text = QApplication::clipboard()->text();
    const TableTaker take = m_core.tableTaker;  // the answer to its question may take the grid away
    if (take && take(ReadTabText(text))) {
        return true;
    }
    const std::vector<GridEntry> entries = PasteEntries(m_core, text);
    if (entries.empty()) {
        return false;
    }
    const CCellID start = entries.front().cell;
    CCellRange block{start.row, start.col, start.row, start.col};
    for (const GridEntry& entry : entries) {
        block.maxRow = std::max(block.maxRow, entry.cell.row);
        block.maxCol = std::max(block.maxCol, entry.cell.col);
    }
    EnterBlock(u"粘贴"_s, block, entries, LossOf(m_core, entries));
    return true;
}

void GridController::MoveBlock(const CCellRange& block, CCellID start, bool isCopy) {
    Redraw();
    if (start == CCellID{block.minRow, block.minCol}) {
        return;
    }
    const std::vector<GridEntry> entries = MoveEntries(m_core, block, start, isCopy);
    PasteLoss loss = LossOf(m_core, entries);
    loss.isDrop = true;
    loss.texts = block.RowCount() * block.ColumnCount();
    EnterBlock(isCopy ? u"复制"_s : u"移动"_s,
               {start.row, start.col, start.row + block.RowCount() - 1, start.col + block.ColumnCount() - 1},
               entries, loss);
}

// The selection comes last, because rows may come while the texts are entered.
void GridController::EnterBlock(const CString& name, const CCellRange& block,
                                const std::vector<GridEntry>& entries, const PasteLoss& loss) {
    const QPointer<CGridCtrl> alive(&m_grid);
    if (!MayLose(loss) || alive.isNull()) {
        return;
    }
    Perform([&, this] { m_core.FocusWithoutSelecting({block.minRow, block.minCol}); });
    if (alive.isNull() || !EnterAll(name, entries) || alive.isNull()) {
        return;
    }
    Perform([&, this] {
        const CCellID first = m_core.Focus();
        if (first.IsValid() && !m_edit.IsOn()) {
            m_core.SelectRange({first.row, first.col,
                                std::min(first.row + block.RowCount(), m_core.RowCount()) - 1,
                                std::min(first.col + block.ColumnCount(), m_core.ColumnCount()) - 1});
        }
    });
}

bool GridController::CancelDrag() {
    const bool isDragging = m_mouse.DropRange().minRow >= 0;
    if (isDragging) {
        ForgetPointer();
        Redraw();
    }
    return isDragging;
}

bool GridController::FillDown() {
    const std::vector<GridEntry> entries = FillDownEntries(m_core);
    return entries.empty() || EnterAll(u"向下填充"_s, entries);
}

void GridController::EndEditAndFill() {
    const CCellID edited = m_edit.Cell();
    const std::optional<CString> text = m_edit.Close();
    if (!text) {
        return;
    }
    const std::vector<GridEntry> entries = FillEntries(m_core, *text);
    if (entries.size() > 1) {
        EnterAll(u"填充"_s, entries);
    } else {
        TakeText(edited, *text);
    }
}

bool GridController::EnterAll(const CString& name, const std::vector<GridEntry>& entries) {
    if (entries.empty()) {
        return false;
    }
    const QPointer<CGridCtrl> alive(&m_grid);
    const CCellID anchor = m_core.Focus().IsValid() ? m_core.Focus() : entries.front().cell;
    Perform([&, this] { m_core.FocusWithoutSelecting(anchor); },
            [this] { m_notices.emplace_back([this] { Q_EMIT m_grid.StepBegan(); }); });
    if (alive.isNull()) {
        return true;
    }
    int cells = 0;
    GridEntries left(m_core, anchor, entries);
    while (!alive.isNull() && !m_edit.IsOn()) {
        const std::optional<GridEntry> next = left.Next();
        if (!next) {
            break;
        }
        ++cells;
        TakeText(next->cell, next->text);
    }
    if (!alive.isNull()) {
        Perform([=, this] { m_notices.emplace_back([=, this] { Q_EMIT m_grid.StepEnded(name, cells); }); });
    }
    return true;
}

// ---- Context menu

void GridController::OpenMenu() {
    const QRect area = m_grid.viewport()->rect();
    const QRect cell = m_core.CellRect(m_core.Focus()) & area;
    PopUpMenu(m_grid.viewport()->mapToGlobal(cell.isEmpty() ? area.topLeft() : cell.bottomLeft()));
}

void GridController::PopUpMenu(const QPoint& globalPosition) {
    Perform([this] { EndEdit(); },
            [this] { m_notices.emplace_back([this] { Q_EMIT m_grid.MenuAboutToShow(); }); },
            [=, this] { m_menu.PopUp(globalPosition); });
}

}  // namespace quorvane
