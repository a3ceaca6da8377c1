// RecordGrid: shows working records in a grid, one row a record, and takes the user's edits into them.
//
// A row finds its record by the record ID that is the item data of column 0. The append row, always the last,
// has 0 there; its entries are collected in the draft of the records, which becomes a new record once it is
// not blank any more. Each thing that the user does is one step, which can be undone.
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
#include "grid/cells/btn_data_base.h"
#include "model/slot_order.h"
#include "model/working_records.h"

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
    std::function<void()> edited = {};            // is called after each change of the records
    std::function<CString()> slice = {};          // names which of all records are shown; none: all
};

template <typename Record>
class RecordGrid {
public:
    // Both outlive the grid; the widget becomes the parent of the control.
    RecordGrid(QWidget& parent, WorkingRecords<Record>& records, RecordGridRules<Record> rules)
        : m_parent(parent),
          m_records(records),
          m_rules(std::move(rules)),
          m_marks(records, m_rules.columns) {}
    ~RecordGrid() { m_records.SetListener({}); }
    RecordGrid(const RecordGrid&) = delete;
    RecordGrid& operator=(const RecordGrid&) = delete;

    // Creates the control with its heading row.
    void Create(int gridId, const QRect& rect, SharesOf width) {
        m_grid = CreateGrid(m_parent, gridId, rect);
        m_grid->SetEntryCheck([this](CCellID cell, const CString& text) {
            const auto& accepts = At(cell.col).accepts;
            return !accepts || accepts(text);
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
        AddOutputCommands(*m_grid, [this] {
            return m_rules.slice ? m_rules.caption + u' ' + m_rules.slice() : m_rules.caption;
        });
        m_grid->SetTipSource([this](CCellID cell) { return TipOf(cell); });
        if (m_rules.marksChanges) {
            m_grid->SetMarkSource([this](CCellID cell) {
                return m_marks.MarksOf(IdAt(cell.row), cell.col, m_records.RemovedBefore(cell.row - 1));
            });
        }
        AddUndo();
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

    // Shows the working records anew, from the first row on, with a fresh append row.
    void Fill() {
        m_records.ResetDraft(m_rules.makeBlank());
        ShowRows();
    }
    // The same, with the present append row.
    void ShowRows() {
        m_ownHeads.clear();
        m_numberedRows = m_records.Count();
        m_rowNumbers.Reset(m_records.Count());
        m_grid->SetHasAppendRow(m_hasAppendRow);
        m_grid->DeleteNonFixedRows();
        m_grid->SetRowCount(1 + m_records.Count() + (m_hasAppendRow ? 1 : 0));
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
    // Numbers all rows but the append row by their position.
    void NumberRows() {
        m_ownHeads.clear();
        m_rowNumbers.Reset(m_records.Count());
        for (int row = 1; row <= m_records.Count(); ++row) {
            m_grid->SetItemText(row, 0, FormatInteger(row));
        }
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
        m_rowNumbers.Append();
        m_records.SetDraft(m_rules.makeBlank());
        m_grid->InsertRow({});
    }
    // Shows a record that has just been written on its own, or could not be written. A record that had no
    // stored ID before gets the next row number.
    void ShowSaved(int row, int id, bool isWritten) {
        const int oldId = IdAt(row);
        CString head = m_grid->GetItemText(row, 0);
        if (oldId <= 0 && id > 0) {
            head = FormatInteger(++m_numberedRows);
        }
        m_ownHeads.remove(oldId);
        m_ownHeads.insert(id, head);
        ShowRowHead(*m_grid, row, head, id, !isWritten);
        ShowRow(row, *m_records.Find(id));
    }

    // ---- Deleting

    // Deletes the selected rows, asking for each. False when nothing was selected or an answer was No.
    bool DeleteSelected() {
        const std::vector<GridRowRun> selected = m_grid->GetSelectedRows();
        if (selected.empty()) {
            return false;
        }
        const StepScope step(m_records, {});
        int removed = 0;
        for (const GridRowRun& run : selected) {
            const int first = run.first - removed;  // the rows below have moved up
            for (int row = run.first; row <= run.last; ++row) {
                const Deletion deletion = DeleteRow(first);
                if (deletion == Deletion::Refused) {
                    return false;
                }
                removed += deletion == Deletion::Done ? 1 : 0;
                m_records.RenameStep(QStringLiteral("删除 %1 行").arg(removed));
            }
        }
        if (removed > 0) {
            m_records.SetModified();
        }
        m_grid->Refresh();
        return true;
    }
    // Deletes one row after asking. Leaves the modified flag to the caller.
    enum class Deletion { Done, Refused, NoRecord };
    Deletion DeleteRow(int row) {
        const int id = IdAt(row);
        const Record* record = id == 0 ? nullptr : m_records.Find(id);
        if (record == nullptr) {
            return Deletion::NoRecord;
        }
        if (!AskToDelete(&m_parent, m_rules.caption, row, m_rules.title(*record))) {
            return Deletion::Refused;
        }
        const StepScope step(m_records, QStringLiteral("删除 1 行"));
        m_records.Remove(id);
        m_rowNumbers.Empty(m_rowNumbers.SlotAt(row - 1));
        m_grid->DeleteRow(row);
        return Deletion::Done;
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
        const bool isAppendRow = row > m_records.Count();
        const Record& record = isAppendRow ? m_records.Draft() : m_records.At(row - 1);
        const CString head =
            isAppendRow ? AppendMarker() : m_ownHeads.value(record.ID, FormatInteger(NumberOf(row)));
        ShowRowHead(*m_grid, row, head, isAppendRow ? 0 : record.ID, m_records.IsUnwritten(record.ID));
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
            const int removedAbove = m_records.RemovedBefore(cell.row - 1);
            tip.text = JoinLines({tip.text, m_marks.TipOf(IdAt(cell.row), cell.col, removedAbove)});
        }
        return tip;
    }
    // The number that the row got when the grid was filled.
    int NumberOf(int row) const { return m_rowNumbers.SlotAt(row - 1) + 1; }

    void Open(CCellID cell) {
        if (At(cell.col).open) {
            At(cell.col).open(cell);
        }
    }

    void TakeCell(int row, int number) {
        const Column<Record>& column = At(number);
        if (!column.take) {
            return;
        }
        Record record = RecordAt(row);
        const bool isChosen = SetupOf(number, record).kind == CellSetup::DropDown;
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
        if (isReplaced) {
            m_grid->RemakeRows();
        } else {
            ShowRowsInPlace();
        }
        const auto& first = changes.front();
        const bool isDraft = first.slot == Records::kDraft;
        const int row = 1 + (isDraft ? m_records.Count() : m_records.PositionOf(first.slot));
        int column = std::max(1, m_grid->GetFocusCell().col);
        if (isReplaced) {
            const Record now = RecordAt(row);
            for (column = 1; column + 1 < ColumnCount(); ++column) {
                if (At(column).show(*first.other) != At(column).show(now)) {
                    break;
                }
            }
        }
        if (row < m_grid->GetRowCount()) {
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
        for (int row = 1; row <= m_records.Count(); ++row) {
            if (m_records.IsUnwritten(m_records.At(row - 1).ID)) {
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
    UndoActions m_undo;
    CBtnDataBase m_buttons;
    CGridCtrl* m_grid = nullptr;  // child of m_parent
    bool m_hasAppendRow = true;
    SlotOrder m_rowNumbers;          // the rows since the grid was filled; deleted ones leave gaps
    QHash<int, CString> m_ownHeads;  // by record ID: the row heads that are not such a number
    int m_numberedRows = 0;
};

}  // namespace quorvane
