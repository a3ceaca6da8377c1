// RecordMarks: how the cells of a grid of working records tell what differs from the file.
#pragma once

#include <vector>

#include "editors/column.h"
#include "editors/messages.h"
#include "model/records/working_records.h"

namespace quorvane {

template <typename Record>
class RecordMarks {
public:
    // Both outlive the object.
    RecordMarks(const WorkingRecords<Record>& records, const std::vector<Column<Record>>& columns)
        : m_records(records), m_columns(columns) {}

    // The marks and the tip of a cell in the row of the record with that ID, or of the append row for ID 0.
    // Column 0 tells of the record as a whole. removedAbove: how many removed records stood above it.
    unsigned MarksOf(int id, int column, int removedAbove) const {
        const unsigned above = column == 0 && removedAbove > 0 ? CellMark::DeletedAbove : 0U;
        if (id == 0 || !m_records.IsChanged(id)) {
            return above;
        }
        if (IsNew(id)) {
            return above | (column == 0 ? CellMark::New : 0U);
        }
        return above | (column == 0 || IsChanged(id, column) ? CellMark::Changed : 0U);
    }
    CString TipOf(int id, int column, int removedAbove) const {
        if (column > 0) {
            return IsChanged(id, column) ? StoredValueTip(At(column).show(*m_records.Stored(id))) : CString();
        }
        const auto unwritten = m_records.WhyUnwritten(id);
        return JoinLines(
            {UnwrittenTip(unwritten.why, unwritten.failure),
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
