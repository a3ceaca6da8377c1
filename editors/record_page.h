// RecordPage: a page over the working records of one table: filling the grid, taking edits in, submitting and
// deleting. A page derived from it says what its columns hold and which statements its records need.
//
// Rows and records are matched through the record ID that is the item data of column 0; the append row,
// always the last, has 0 there.
#pragma once

#include <QScrollBar>
#include <algorithm>
#include <initializer_list>
#include <utility>

#include "data/number_text.h"
#include "editors/grid_page.h"
#include "widgets/ease_combo_box.h"

namespace quorvane {

template <typename Record>
class RecordPage : public GridPage {
public:
    using GridPage::GridPage;

    bool IsModified() const override { return m_records.IsModified(); }

    bool Submit() override {
        const SubmitFailures failures = m_records.Submit(
            [this](const Record& record) { return IsBlank(record); },
            [this](Record& record) { return Insert(record); },
            [this](Record& record) { return Update(record); }, [this](int id) { return Delete(id); });
        if (!failures.None()) {
            TellFailures(failures);
        }
        return true;
    }

    // Keeps the focus and the scroll position where they were.
    void Refresh() override {
        const CCellID focus = Grid().GetFocusCell();
        const int left = Grid().horizontalScrollBar()->value();
        const int top = Grid().verticalScrollBar()->value();
        FillGrid();
        if (focus.IsValid() && focus.row < Grid().GetRowCount()) {
            Grid().SetFocusCell(focus);
        }
        Grid().horizontalScrollBar()->setValue(left);
        Grid().verticalScrollBar()->setValue(top);
        PointOutUnwritten();
    }

    bool DeleteSelected() override {
        const CCellRange selected = Grid().GetSelectedCellRange();
        if (!Grid().IsValid(selected)) {
            return false;
        }
        const int row = selected.minRow;
        bool removed = false;
        for (int round = 0; round < selected.RowCount(); ++round) {
            const int id = Grid().GetItemData(row, 0);
            const Record* record = id == 0 ? nullptr : m_records.Find(id);
            if (record == nullptr) {
                continue;
            }
            if (!AskToDelete(row, Title(*record))) {
                return false;
            }
            m_records.Remove(id);
            removed = true;
            Grid().DeleteRow(row);
        }
        if (removed) {
            m_records.SetModified();
        }
        Grid().Refresh();
        return true;
    }

protected:
    // The record's own cells, column 0 excepted.
    virtual void WriteRow(int row, const Record& record) = 0;
    // The append row's preset cells, column 0 excepted.
    virtual void WriteAppendRow(int row) = 0;
    virtual bool HasAppendRow() const { return true; }
    // Takes the text of one cell into the record; a text that is not acceptable is rewritten in the cell.
    virtual void ReadCell(int row, int column, Record& record) = 0;
    // Whether this is an append row in which nothing has been filled yet.
    virtual bool IsBlank(const Record& record) const = 0;
    // What a question calls the record.
    virtual CString Title(const Record& record) const = 0;
    // The three statements; each says whether it ran.
    virtual bool Insert(Record& record) = 0;
    virtual bool Update(Record& record) = 0;
    virtual bool Delete(int id) = 0;

    WorkingRecords<Record>& Working() { return m_records; }

    // Before the shown records are replaced: submits or drops pending changes as the user wishes. False when
    // the user has to see to some of them: those that could not be submitted are shown, marked, so that
    // nothing typed is lost unseen.
    bool SettleChanges() {
        EndEditing();
        if (!IsModified()) {
            return true;
        }
        if (!AskToSubmit()) {
            m_records.DiscardChanges();
            return true;
        }
        Submit();
        if (NeedsAnotherLook()) {
            FillGrid();
            PointOutUnwritten();
            return false;
        }
        return true;
    }
    // Whether the submit that has just ended leaves something to the user that only the shown records tell.
    virtual bool NeedsAnotherLook() { return m_records.HasUnwritten(); }

    // Before another choice of a list of filters is followed. When changes cannot be settled the list goes
    // back to present, the choice that the shown records belong to; until they are, it is already there,
    // since an append row takes over what is chosen. Else present becomes the new choice.
    bool SettleChoice(CEaseComboBox& list, CString& present) {
        const CString chosen = list.currentText();
        if (present.isEmpty()) {
            list.ClearSelection();
        } else {
            list.SelectString(present);
        }
        if (!SettleChanges()) {
            return false;
        }
        list.SelectString(chosen);
        present = chosen;
        return true;
    }

    // The number that the next record to be stored on its own shows in column 0.
    int NextRowNumber() { return ++m_rowCounter; }

    void FillGrid() {
        m_records.HideDeleted();
        Grid().DeleteNonFixedRows();
        Grid().SetRowCount(1 + static_cast<int>(m_records.Records().size()));
        int row = 1;
        for (const Record& record : m_records.Records()) {
            WriteRowHead(row, FormatInteger(row), record.ID, m_records.IsUnwritten(record.ID));
            WriteRow(row, record);
            ++row;
        }
        m_rowCounter = row - 1;
        if (HasAppendRow()) {
            AddAppendRow();
        }
        Grid().Refresh();
    }

    void CellEdited(int row, int column) override { TakeRow(row, {column}); }

    // Takes the cells of those columns into the row's record. Of a known record no other cell is read: its
    // other values stay as they are, to the last digit and to choices that their cells do not offer. The
    // append row is read whole and becomes a record once it is not blank.
    void TakeRow(int row, std::initializer_list<int> columns) {
        const int id = Grid().GetItemData(row, 0);
        const Record* known = id == 0 ? nullptr : m_records.Find(id);
        Record record = known != nullptr ? *known : Record{};
        record.ID = id;
        for (int c = 1; c < Grid().GetColumnCount(); ++c) {
            if (known == nullptr || std::find(columns.begin(), columns.end(), c) != columns.end()) {
                ReadCell(row, c, record);
            }
        }
        if (id != 0) {
            m_records.Replace(record);
        } else if (!IsBlank(record)) {
            AppendRecord(row, std::move(record));
        }
    }

    // Makes the append row the row of a new record and adds a fresh append row below.
    void AppendRecord(int row, Record record) {
        Grid().SetItemData(row, 0, m_records.Append(std::move(record)));
        AddAppendRow();
    }

private:
    // What the last submit could not write is still to be written: nobody leaves it unasked, and the first of
    // the marked row numbers comes into sight.
    void PointOutUnwritten() {
        if (!m_records.HasUnwritten()) {
            return;
        }
        m_records.SetModified();
        for (int row = 1; row < Grid().GetRowCount(); ++row) {
            if (m_records.IsUnwritten(Grid().GetItemData(row, 0))) {
                Grid().EnsureVisible(row, 0);
                return;
            }
        }
    }

    void AddAppendRow() {
        const int row = Grid().InsertRow(QStringLiteral("追加"));
        WriteRowHead(row, QStringLiteral("追加"), 0);
        WriteAppendRow(row);
    }

    WorkingRecords<Record> m_records;
    int m_rowCounter = 0;  // rows numbered so far
};

}  // namespace quorvane
