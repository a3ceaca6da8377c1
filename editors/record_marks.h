// RecordMarks: how the cells of a grid of working records tell what differs from the file.
#pragma once

#include <vector>

#include "editors/column.h"
#include "editors/messages.h"
#include "model/records/working_records.h"

namespace quorvane {

// The leftmost column in sight tells of its row as a whole too: column 0, as long as it is not scrolled away.
struct MarkedColumn {
    int number = 0;
    bool isLeftmost = false;
};

template <typename Record>
class RecordMarks {
public:
    // Both outlive the object.
    RecordMarks(const WorkingRecords<Record>& records, const std::vector<Column<Record>>& columns)
        : m_records(records), m_columns(columns) {}

    // The marks and the tip of a cell in the row of the record with that ID, or of the append row for ID 0.
    // removedAbove: how many removed records stood above it.
    unsigned MarksOf(int id, MarkedColumn column, int removedAbove) const {
        const unsigned above = column.isLeftmost && removedAbove > 0 ? CellMark::DeletedAbove : 0U;
        if (id == 0 || !m_records.IsChanged(id)) {
            return above;
        }
        if (IsNew(id)) {
            return above | (column.isLeftmost ? CellMark::New : 0U);
        }
        const bool isChanged = column.number == 0 || IsChanged(id, column.number);
        return above | (isChanged ? CellMark::Changed : 0U);
    }
    CString TipOf(int id, MarkedColumn column, int removedAbove) const {
        const bool isChanged = column.number > 0 && IsChanged(id, column.number);
        CString stored =
            isChanged ? StoredValueTip(At(column.number).show(*m_records.Stored(id))) : CString();
        if (!column.isLeftmost) {
            return stored;
        }
        const auto unwritten = m_records.WhyUnwritten(id);
        return JoinLines(
            {stored, UnwrittenTip(unwritten.why, unwritten.failure),
             IsNew(id) ? QStringLiteral("新行,尚未提交。") : CString(),
             removedAbove > 0 ? QStringLiteral("上方已删除%1行,尚未提交。").arg(removedAbove) : CString()});
    }

private:
    // Whether the next submit inserts the record. A record that another program has removed from the file is
    // not inserted again.
    bool IsNew(int id) const {
        return id != 0 && m_records.Stored(id) == nullptr &&
               m_records.WhyUnwritten(id).why != Unwritten::Missing;
    }
    // Whether the file has the record, and it shows another text there.
    bool IsChanged(int id, int column) const {
        const Record* stored = id == 0 || !m_records.IsChanged(id) ? nullptr : m_records.Stored(id);
        const Record* record = m_records.Find(id);
        return stored != nullptr && record != nullptr && At(column).show(*stored) != At(column).show(*record);
    }
    const Column<Record>& At(int column) const { return m_columns[static_cast<size_t>(column)]; }

    const WorkingRecords<Record>& m_records;
    const std::vector<Column<Record>>& m_columns;
};

}  // namespace quorvane
