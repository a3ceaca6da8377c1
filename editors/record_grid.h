// RecordGrid: shows working records in a grid, one row a record, and takes the user's edits into them.
//
// A row finds its record by the record ID that is the item data of column 0. The append row, always the last,
// has 0 there; its entries are collected in the draft of the records, which becomes a new record once it is
// not blank any more. The other rows are those of a RowView. Each thing that the user does is one step, which
// can be undone.
#pragma once

#include <QScrollBar>
#include <functional>
#include <utility>
#include <vector>

#include "editors/column.h"
#include "editors/column_memory.h"
#include "editors/grid_output.h"
#include "editors/messages.h"
#include "editors/record_marks.h"
#include "editors/undo_actions.h"
#include "editors/view/record_arrangement.h"
#include "grid/cells/btn_data_base.h"
#include "model/records/working_records.h"

namespace quorvane {

// What a RecordGrid has to know of its records.
template <typename Record>
struct RecordGridRules {
    CString caption;  // of every question
    std::vector<Column<Record>> columns;
    std::function<CString(const Record&)> title;  // what a question calls a record
    std::function<bool(const Record&)> isBlank;   // whether nothing has been entered in the append row
    std::function<Record()> makeBlank;            // what a fresh append row holds
    bool marksChanges = true;                     // what differs from the file is marked
    bool arrangesRows = true;                     // the user can sort, filter and search the rows
    std::function<void()> edited = {};            // is called after each change of the records
    std::function<CString()> slice = {};          // names the part of the records that is shown; none: all
};

template <typename Record>
class RecordGrid {
public:
    // Both outlive the grid; the widget becomes the parent of the control.
    RecordGrid(QWidget& parent, WorkingRecords<Record>& records, RecordGridRules<Record> rules)
        : m_parent(parent),
          m_records(records),
          m_rules(std::move(rules)),
          m_marks(records, m_rules.columns),
          m_arrangement(records, m_rules.columns) {}
    ~RecordGrid() { m_records.SetListener({}); }
    RecordGrid(const RecordGrid&) = delete;
    RecordGrid& operator=(const RecordGrid&) = delete;

    // Creates the control with its heading row.
    void Create(int gridId, const QRect& rect, SharesOf width) {
        m_grid = CreateGrid(m_parent, gridId, rect);
        m_grid->SetEntryCheck([this](CCellID cell, const CString& text, const RowTexts& before) {
            return WillTake(cell, text, before);
        });
        m_grid->setAccessibleName(m_rules.caption);
        const int usableWidth = UsableWidth(*m_grid, width);
        for (const Column<Record>& column : m_rules.columns) {
            const int index = m_grid->InsertColumn(CString::fromUtf16(column.heading), kCentred);
            m_grid->SetColumnWidth(index, static_cast<int>(usableWidth * column.share));
        }
        KeepColumns(*m_grid, m_rules.caption);
        m_grid->SetRowMaker([this](int row) { MakeRow(row); });
        QObject::connect(m_grid, &CGridCtrl::EndLabelEdit, &m_parent,
                         [this](int row, int column) { TakeCell(row, column); });
        m_grid->SetPasteQuestion([this](const PasteLoss& loss) {
            return AskToPaste(&m_parent, m_rules.caption, loss, m_hasAppendRow);
        });
        AddOutputCommands(
            *m_grid,
            [this] { return m_rules.slice ? m_rules.caption + u' ' + m_rules.slice() : m_rules.caption; },
            // A row that is hidden would be taken for a new one.
            [this] {
                return Rows().Count() < m_records.Count() ? QStringLiteral("请先取消筛选") : CString();
            });
        m_grid->SetTipSource([this](CCellID cell) { return TipOf(cell); });
        if (m_rules.marksChanges) {
            m_grid->SetMarkSource([this](CCellID cell) {
                return m_marks.MarksOf(IdAt(cell.row), ColumnOf(cell), RemovedAbove(cell.row));
            });
        }
        AddUndo();
        if (m_rules.arrangesRows) {
            m_arrangement.Create(*m_grid, m_parent, m_rules.caption, [this] { ShowRowsInPlace(); });
        }
        QObject::connect(m_grid, &CGridCtrl::TextTyped, &m_parent, ShowQuoteTip);
        QObject::connect(m_grid, &CGridCtrl::ButtonClicked, &m_parent, [this](int row, int column) {
            Open({row, column});
        });
        QObject::connect(m_grid, &CGridCtrl::CellClicked, &m_parent, [this](int row, int column) {
            OpenChooser({row, column});
        });
    }
    CGridCtrl& Control() { return *m_grid; }
    const RecordGridRules<Record>& Rules() const { return m_rules; }

    void SetHasAppendRow(bool hasAppendRow) { m_hasAppendRow = hasAppendRow; }

    // Puts a command of the window into the grid's menu.
    void AddCommand(QAction& command) { m_grid->AddMenuAction(GridMenuGroup::Data, &command); }

    // Takes a text that is still being typed, as if its cell had been left.
    void EndEditing() { m_grid->EndEdit(); }

    // Opens the list of a cell of the kind Chooser. False for any other cell.
    bool OpenChooser(CCellID cell) {
        const bool isChooser =
            cell.row > 0 && SetupOf(cell.col, RecordAt(cell.row)).kind == CellSetup::Chooser;
        if (isChooser) {
            Open(cell);
        }
        return isChooser;
    }

    // ---- Showing

    // Shows the working records anew, all of them, from the first row on, with a fresh append row.
    void Fill() {
        m_arrangement.ShowAll();
        m_records.ResetDraft(m_rules.makeBlank());
        ShowRows();
    }
    // The same, with the present append row.
    void ShowRows() {
        m_ownHeads.clear();
        m_numberedRows = m_records.Count();
        m_arrangement.Arrange();
        m_grid->SetHasAppendRow(m_hasAppendRow);
        m_grid->DeleteNonFixedRows();
        m_grid->SetRowCount(1 + Rows().Count() + (m_hasAppendRow ? 1 : 0));
        m_grid->Refresh();
    }
    // Like Fill, but keeps the focus and the scroll position, and shows the first unwritten record.
    void Refresh() {
        m_records.ResetDraft(m_rules.makeBlank());
        ShowRowsInPlace();
        PointOutUnwritten();
    }
    // Shows all rows anew, because what they show beside their records has changed.
    void RemakeRows() { m_grid->RemakeRows(); }
    // Numbers all rows but the append row.
    void NumberRows() {
        m_ownHeads.clear();
        m_grid->RemakeRows();
    }

    // ---- Rows and records

    // The ID of the row's record, or 0 for the append row.
    int IdAt(int row) const { return m_grid->GetItemData(row, 0); }
    // The row's record, or the blank record of the append row.
    Record RecordAt(int row) const {
        const int id = IdAt(row);
        const Record* known = id == 0 ? nullptr : m_records.Find(id);
        Record record = known == nullptr ? m_records.Draft() : *known;
        record.ID = id;
        return record;
    }
    // Takes a record, as RecordAt gave it and an editor has changed it, into the row of the cell that was
    // opened.
    void Put(CCellID cell, Record record) {
        const StepScope step(m_records, StepName(QStringLiteral("选择"), cell.col));
        Take(cell.row, record);
        ShowRow(cell.row, record);
    }
    // Adds a fresh append row, because the present one has become the row of an appended record.
    void AddAppendRow() {
        m_arrangement.Rows().NoteAppended();
        m_records.SetDraft(m_rules.makeBlank());
        m_grid->InsertRow({});
    }
    // Shows a record that has just been written on its own, or could not be written. A record that had no
    // stored ID before gets the next row number.
    void ShowSaved(int row, int id, bool isWritten) {
        const int oldId = IdAt(row);
        CString head = oldId == 0 ? AppendMarker() : m_ownHeads.take(oldId);
        if (oldId <= 0 && id > 0) {
            head = FormatInteger(++m_numberedRows);
        }
        if (!head.isEmpty()) {
            m_ownHeads.insert(id, head);
        }
        ShowRowHead(*m_grid, row, HeadOf(row, id), id, !isWritten);
        ShowRow(row, *m_records.Find(id));
    }

    // ---- Deleting

    // Deletes the selected rows, asking for each, or once for all that follow the first. False when nothing
    // was selected or an answer was No.
    bool DeleteSelected() {
        if (m_grid->GetSelectedRows().empty()) {
            return false;
        }
        const StepScope step(m_records, {});
        int removed = 0;
        bool asks = true;
        for (const auto& [row, id] : SelectedRecords()) {
            if (!asks) {
                m_records.Remove(id);
            } else {
                const DeleteAnswer answer = DeleteRow(row - removed, removed > 0);
                if (answer == DeleteAnswer::No) {
                    return false;
                }
                asks = answer != DeleteAnswer::YesToAll;
            }
            ++removed;
            m_records.RenameStep(QStringLiteral("删除 %1 行").arg(removed));
        }
        if (!asks) {
            ShowRowsInPlace();
        }
        if (removed > 0) {
            m_records.SetModified();
        }
        m_grid->Refresh();
        return true;
    }
    // Deletes one row after asking. Leaves the modified flag to the caller. No also when the row has no
    // record.
    DeleteAnswer DeleteRow(int row, bool offersAll = false) {
        const int id = IdAt(row);
        const Record* record = id == 0 ? nullptr : m_records.Find(id);
        if (record == nullptr) {
            return DeleteAnswer::No;
        }
        const DeleteAnswer answer =
            AskToDelete(&m_parent, m_rules.caption, NumberOf(row), m_rules.title(*record), offersAll);
        if (answer == DeleteAnswer::No) {
            return answer;
        }
        const StepScope step(m_records, QStringLiteral("删除 1 行"));
        m_records.Remove(id);
        Rows().NoteRemoved(row - 1);
        m_numberedRows -= m_ownHeads.take(id) == AppendMarker() ? 0 : 1;
        m_ownHeads.removeIf([](const auto& head) { return head.value() != AppendMarker(); });
        m_grid->DeleteRow(row);
        m_grid->RemakeRows();  // the rows below have other numbers now
        return answer;
    }

    // ---- Undo and redo

    // Shows and focuses what has changed.
    void Undo() { ShowChanged(m_records.Undo()); }
    void Redo() { ShowChanged(m_records.Redo()); }
    // What was done up to now can be undone no more, and the menu says why.
    void EndHistory(const CString& reason) {
        m_records.EndHistory();
        m_undo.SetReason(reason);
    }

    // ---- Submitting

    // Before other records are shown: submits or drops the changes, as the user wishes. submit() returns
    // whether the user need not see the records again. False when they must: unwritten records are marked
    // then, so that nothing typed is lost unseen.
    bool SettleChanges(const std::function<bool()>& submit) {
        EndEditing();
        if (!m_records.IsModified()) {
            return true;
        }
        if (!AskToSubmit(&m_parent, m_rules.caption)) {
            m_records.DiscardChanges();
            return true;
        }
        if (submit()) {
            return true;
        }
        Fill();
        PointOutUnwritten();
        return false;
    }

private:
    using Records = WorkingRecords<Record>;

    static CString AppendMarker() { return QStringLiteral("追加"); }

    // Fills the cells of a row, which the grid calls for when the row is first shown or touched.
    void MakeRow(int row) {
        const bool isAppendRow = row > Rows().Count();
        const Record& record = isAppendRow ? m_records.Draft() : Rows().At(row - 1);
        const int id = isAppendRow ? 0 : record.ID;
        ShowRowHead(*m_grid, row, isAppendRow ? AppendMarker() : HeadOf(row, id), id,
                    m_records.IsUnwritten(id));
        ShowRow(row, record);
    }
    void ShowRow(int row, const Record& record) {
        for (int column = 1; column < ColumnCount(); ++column) {
            ShowCellOf(row, column, record);
        }
    }
    void ShowCellOf(int row, int number, const Record& record) {
        const Column<Record>& column = At(number);
        ShowCell(*m_grid, m_buttons, {row, number}, SetupOf(number, record), column.show(record),
                 column.format);
    }
    CellSetup SetupOf(int column, const Record& record) const {
        return At(column).setup ? At(column).setup(record) : CellSetup{};
    }
    GridTip TipOf(CCellID cell) const {
        if (!cell.IsValid()) {
            return {};
        }
        const Column<Record>& column = At(cell.col);
        if (cell.row == 0) {
            return {.text = CString::fromUtf16(column.help)};
        }
        GridTip tip = column.tip ? column.tip(RecordAt(cell.row)) : GridTip{};
        if (m_rules.marksChanges) {
            const CString changes = m_marks.TipOf(IdAt(cell.row), ColumnOf(cell), RemovedAbove(cell.row));
            tip.text = JoinLines({tip.text, changes});
        }
        return tip;
    }
    MarkedColumn ColumnOf(CCellID cell) const { return {cell.col, cell.col == m_grid->LeftmostColumn()}; }
    RowView<Record>& Rows() { return m_arrangement.Rows(); }
    const RowView<Record>& Rows() const { return m_arrangement.Rows(); }
    // A record has the same number wherever it is shown.
    int NumberOf(int row) const { return m_records.PositionOf(Rows().SlotAt(row - 1)) + 1; }
    CString HeadOf(int row, int id) const { return m_ownHeads.value(id, FormatInteger(NumberOf(row))); }
    // How many records were removed between the row and the one above it.
    int RemovedAbove(int row) const { return Rows().IsWhole() ? m_records.RemovedBefore(row - 1) : 0; }
    // The rows with records in which a cell is selected, and the IDs of the records.
    std::vector<std::pair<int, int>> SelectedRecords() const {
        std::vector<std::pair<int, int>> selected;
        for (const GridRowRun& run : m_grid->GetSelectedRows()) {
            for (int row = run.first; row <= std::min(run.last, Rows().Count()); ++row) {
                selected.emplace_back(row, Rows().At(row - 1).ID);
            }
        }
        return selected;
    }

    void Open(CCellID cell) {
        if (At(cell.col).open) {
            At(cell.col).open(cell);
        }
    }

    // What cells take that are not typed into hangs on such cells of the same row.
    bool WillTake(CCellID cell, const CString& text, const RowTexts& before) const {
        Record record = RecordAt(cell.row);
        for (const auto& [column, entered] : before) {
            if (SetupOf(column, record).takesTexts) {
                At(column).take(entered, record);
            }
        }
        return TakesText(At(cell.col), record, text);
    }
    void TakeCell(int row, int number) {
        const Column<Record>& column = At(number);
        if (!column.take) {
            return;
        }
        Record record = RecordAt(row);
        const bool isChosen = SetupOf(number, record).kind != CellSetup::Text;
        const StepScope step(m_records,
                             StepName(isChosen ? QStringLiteral("选择") : QStringLiteral("输入"), number));
        const CString text = m_grid->GetItemText(row, number);
        const Record before = record;
        column.take(text, record);
        // A cell that was only looked at may show its value rounded.
        if (!m_grid->IsEditTyped() && column.show(record) == column.show(before)) {
            record = before;
        }
        Take(row, record);
        const CString shown = column.show(record);
        if (shown != text) {
            m_grid->SetItemText(row, number, shown);
        }
        for (int other = 1; other < ColumnCount(); ++other) {
            if (other != number && At(other).dependsOnRecord) {
                ShowCellOf(row, other, record);
            }
        }
    }
    void Take(int row, Record& record) {
        if (record.ID != 0) {
            m_records.Replace(record);
        } else if (m_rules.isBlank(record)) {
            m_records.SetDraft(record);
        } else {
            record.ID = m_records.Append(record);
            m_ownHeads.insert(record.ID, AppendMarker());  // until the grid is filled again
            m_grid->SetItemData(row, 0, record.ID);
            AddAppendRow();
        }
    }

    // Keeps the focus and the scroll position.
    void ShowRowsInPlace() {
        const CCellID focus = m_grid->GetFocusCell();
        const int left = m_grid->horizontalScrollBar()->value();
        const int top = m_grid->verticalScrollBar()->value();
        ShowRows();
        if (focus.IsValid() && focus.row < m_grid->GetRowCount()) {
            m_grid->SetFocusCell(focus);
        }
        m_grid->horizontalScrollBar()->setValue(left);
        m_grid->verticalScrollBar()->setValue(top);
    }

    void AddUndo() {
        m_undo.Add(*m_grid, {.undoName = [this] { return m_records.UndoName(); },
                             .redoName = [this] { return m_records.RedoName(); },
                             .undo = [this] { Undo(); },
                             .redo = [this] { Redo(); }});
        QObject::connect(m_grid, &CGridCtrl::StepBegan, &m_parent, [this] { m_records.BeginStep({}); });
        QObject::connect(m_grid, &CGridCtrl::StepEnded, &m_parent, [this](const CString& name, int cells) {
            m_records.RenameStep(QStringLiteral("%1 %2 格").arg(name).arg(cells));
            m_records.EndStep();
        });
        m_records.SetListener([this] {
            m_undo.Update();
            m_arrangement.NoteChange();
            m_grid->Refresh();  // for the marks
            if (m_rules.edited) {
                m_rules.edited();
            }
        });
    }
    CString StepName(const CString& action, int column) const {
        return action + u' ' + CString::fromUtf16(At(column).heading).remove(u' ');
    }

    // The changes hold what was there before. The first one gets the focus, in the first column that shows
    // it.
    using Changes = std::vector<typename WorkingRecords<Record>::Change>;
    void ShowChanged(const Changes& changes) {
        const bool isReplaced = std::all_of(changes.begin(), changes.end(), [this](const auto& change) {
            return change.other &&
                   (change.slot == Records::kDraft || m_records.Find(change.other->ID) != nullptr);
        });
        const auto& first = changes.front();
        const bool isDraft = first.slot == Records::kDraft;
        if (isReplaced) {
            m_grid->RemakeRows();
        } else {
            ShowRowsInPlace();
        }
        const bool exists = !first.other || m_records.Find(first.other->ID) != nullptr;
        if (!isDraft && exists && Rows().RowOf(first.slot) < 0) {
            m_arrangement.ShowAll();  // a filter hides it
            ShowRowsInPlace();
        }
        const int row = 1 + (isDraft ? Rows().Count() : Rows().RowOf(first.slot));
        int column = std::max(1, m_grid->GetFocusCell().col);
        if (isReplaced) {
            const Record now = RecordAt(row);
            for (column = 1; column + 1 < ColumnCount(); ++column) {
                if (At(column).show(*first.other) != At(column).show(now)) {
                    break;
                }
            }
        }
        if (row > 0 && row < m_grid->GetRowCount()) {
            m_grid->SetFocusCell({row, column});
        }
    }

    // What the last submit could not write is still to be written: the records count as modified, and the
    // first marked row number becomes visible.
    void PointOutUnwritten() {
        if (!m_records.HasUnwritten()) {
            return;
        }
        m_records.SetModified();
        for (int row = 1; row <= Rows().Count(); ++row) {
            if (m_records.IsUnwritten(Rows().At(row - 1).ID)) {
                m_grid->EnsureVisible(row, 0);
                return;
            }
        }
    }

    int ColumnCount() const { return static_cast<int>(m_rules.columns.size()); }
    const Column<Record>& At(int column) const { return m_rules.columns[static_cast<size_t>(column)]; }

    QWidget& m_parent;
    Records& m_records;
    RecordGridRules<Record> m_rules;
    RecordMarks<Record> m_marks;
    RecordArrangement<Record> m_arrangement;
    UndoActions m_undo;
    CBtnDataBase m_buttons;
    CGridCtrl* m_grid = nullptr;  // child of m_parent
    bool m_hasAppendRow = true;
    QHash<int, CString> m_ownHeads;  // by record ID: the row heads that are not the record's number
    int m_numberedRows = 0;
};

}  // namespace quorvane
