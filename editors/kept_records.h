// Makes the records' edits of an earlier run again, and tells of those that cannot be made.
#pragma once

#include <QStringList>

#include "editors/record_grid.h"
#include "model/kept/record_edits.h"

namespace quorvane {

// A line that tells which edit could not be made, because the record is no longer in the file as it was.
template <typename Record>
CString RefusedLine(const RecordGridRules<Record>& rules, const RefusedEdit<Record>& refused) {
    const auto& [edit, present] = refused;
    QStringList parts;
    if (!edit.edited) {
        parts += QStringLiteral("上次已删除,但文件中的内容已改变,没有再次删除");
    } else if (!present) {
        parts += QStringLiteral("文件中已没有这一行");
    }
    for (const Column<Record>& column : rules.columns) {
        if (edit.edited && column.show && column.show(*edit.stored) != column.show(*edit.edited)) {
            const CString now =
                present ? QStringLiteral("文件中的值 %1,").arg(column.show(*present)) : CString();
            parts +=
                QStringLiteral("%1: %2上次改为 %3")
                    .arg(CString::fromUtf16(column.heading).remove(u' '), now, column.show(*edit.edited));
        }
    }
    return rules.caption + u' ' + rules.title(*edit.stored) + QStringLiteral(": ") +
           parts.join(QStringLiteral("; "));
}

// Makes the edits again in records that have just been loaded, and shows them. Returns a line for each edit
// that could not be made. readAll and newIds as in MakeAgain.
template <typename Record>
QStringList MakeEditsAgain(const QCborValue& kept, WorkingRecords<Record>& records, RecordGrid<Record>& grid,
                           const ReadAll<Record>& readAll, std::map<int, int>* newIds = nullptr) {
    const std::optional<RecordEdits<Record>> edits = ReadEdits<Record>(kept);
    if (!edits) {
        return {grid.Rules().caption + QStringLiteral(": 上次的修改不能读取")};
    }
    QStringList lines;
    for (const RefusedEdit<Record>& refused :
         MakeAgain(records, *edits, QStringLiteral("恢复上次的修改"), readAll, newIds)) {
        lines += RefusedLine(grid.Rules(), refused);
    }
    grid.ShowRows();
    return lines;
}

}  // namespace quorvane
