// RecordEdits: what differs from the file in working records, to be kept beside the program and made again in
// a later run.
#pragma once

#include <optional>
#include <vector>

#include "data/stored_records.h"
#include "model/record_cbor.h"
#include "model/working_records.h"

namespace quorvane {

// A new record is not stored, a removed one not edited.
template <typename Record>
struct RecordEdit {
    std::optional<Record> stored;
    std::optional<Record> edited;
};

template <typename Record>
struct RecordEdits {
    std::vector<RecordEdit<Record>> edits;
    int highestId = 0;  // of the records in the file when they were shown
};

template <typename Record>
RecordEdits<Record> EditsOf(const WorkingRecords<Record>& records) {
    RecordEdits<Record> result;
    records.ForEachEdit([&result](const std::optional<Record>& stored, const Record* edited) {
        result.edits.push_back({stored, edited == nullptr ? std::nullopt : std::optional(*edited)});
    });
    records.ForEach(
        [&result](const Record& record) { result.highestId = std::max(result.highestId, record.ID); });
    return result;
}

// Makes the edits again, as one step, in records that have just been loaded. What the file holds already is
// left alone: the end of the other run may have come during a submit. Returns the edits of records that are
// not in the file as they were then.
template <typename Record>
std::vector<RecordEdit<Record>> MakeAgain(WorkingRecords<Record>& records, const RecordEdits<Record>& kept,
                                          const CString& stepName) {
    const StepScope step(records, stepName);
    std::vector<RecordEdit<Record>> refused;
    std::vector<Record> later;  // in the file since then
    records.ForEach([&](const Record& record) {
        if (record.ID > kept.highestId) {
            later.push_back(record);
        }
    });
    for (const RecordEdit<Record>& edit : kept.edits) {
        const Record* present = edit.stored ? records.Find(edit.stored->ID) : nullptr;
        if (!edit.stored) {
            const auto written = std::find_if(later.begin(), later.end(), [&edit](const Record& record) {
                Record sought = *edit.edited;
                sought.ID = record.ID;
                return IsSameInFile(record, sought);
            });
            if (written == later.end()) {
                records.Append(*edit.edited);
            } else {
                later.erase(written);
            }
        } else if (present == nullptr) {
            if (edit.edited) {
                refused.push_back(edit);
            }
        } else if (edit.edited && IsSameInFile(*present, *edit.edited)) {
            continue;
        } else if (!IsSameInFile(*present, *edit.stored)) {
            refused.push_back(edit);
        } else if (edit.edited) {
            records.Replace(*edit.edited);
        } else {
            records.Remove(present->ID);
            records.SetModified();
        }
    }
    return refused;
}

// ---- As a CBOR value: an array of the highest ID and, for each edit, an array of stored and edited record

template <typename Record>
QCborValue ToCbor(const RecordEdits<Record>& kept) {
    QCborArray values{kept.highestId};
    for (const auto& [stored, edited] : kept.edits) {
        values.append(
            QCborArray{stored ? ToCbor(*stored) : QCborValue(), edited ? ToCbor(*edited) : QCborValue()});
    }
    return values;
}

template <typename Record>
std::optional<RecordEdits<Record>> ReadEdits(const QCborValue& value) {
    const QCborArray values = value.toArray();
    RecordEdits<Record> kept;
    if (values.isEmpty() || !ReadCbor(values.at(0), kept.highestId)) {
        return std::nullopt;
    }
    const auto read = [](const QCborValue& side, std::optional<Record>& record) {
        return side.isUndefined() || ReadCbor(side, record.emplace());
    };
    for (qsizetype at = 1; at < values.size(); ++at) {
        const QCborArray sides = values.at(at).toArray();
        auto& [stored, edited] = kept.edits.emplace_back();
        const bool isRead = sides.size() == 2 && read(sides.at(0), stored) && read(sides.at(1), edited);
        if (!isRead || (!stored && !edited) || (stored && edited && stored->ID != edited->ID)) {
            return std::nullopt;
        }
    }
    return kept;
}

}  // namespace quorvane
