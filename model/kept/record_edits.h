// RecordEdits: what differs from the file in working records, to be kept beside the program and made again in
// a later run.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "data/stored_records.h"
#include "model/kept/record_cbor.h"
#include "model/records/working_records.h"

namespace quorvane {

// One edited record: stored is what the file holds (none for a new record), edited what the user made of it
// (none for a removed one).
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

// An edit that could not be made again, and what the file holds of its record, if anything.
template <typename Record>
struct RefusedEdit {
    RecordEdit<Record> edit;
    std::optional<Record> present;
};

// Reads all records of the file. False when not all of them could be read.
template <typename Record>
using ReadAll = std::function<bool(std::vector<Record>& records)>;

// The records of the file that are not among the loaded ones. They are read when the first is sought.
template <typename Record>
class RecordsElsewhere {
public:
    explicit RecordsElsewhere(ReadAll<Record> read) : m_read(std::move(read)) {}

    const Record* Find(int id) {
        if (m_read) {
            m_isWhole = std::exchange(m_read, {})(m_records);
        }
        const auto found = std::find_if(m_records.begin(), m_records.end(),
                                        [id](const Record& record) { return record.ID == id; });
        return found == m_records.end() ? nullptr : &*found;
    }
    bool IsWhole() const { return m_isWhole; }

private:
    ReadAll<Record> m_read;
    std::vector<Record> m_records;
    bool m_isWhole = true;
};

// Makes the edits again, as one step, in records that have just been loaded. What the file holds already is
// left alone: the end of the other run may have come during a submit. Returns the edits of records that are
// not in the file, or not among the loaded ones, as they were then. newIds, if given, gets the IDs that the
// new records have now, by those that they had.
template <typename Record>
std::vector<RefusedEdit<Record>> MakeAgain(WorkingRecords<Record>& records, const RecordEdits<Record>& kept,
                                           const CString& stepName, const ReadAll<Record>& readAll,
                                           std::map<int, int>* newIds = nullptr) {
    const StepScope step(records, stepName);
    std::vector<RefusedEdit<Record>> refused;
    std::vector<Record> later;  // in the file since then
    RecordsElsewhere<Record> elsewhere(readAll);
    records.ForEach([&](const Record& record) {
        if (record.ID > kept.highestId) {
            later.push_back(record);
        }
    });
    for (const RecordEdit<Record>& edit : kept.edits) {
        if (!edit.stored) {
            const auto written = std::find_if(later.begin(), later.end(), [&edit](const Record& record) {
                Record sought = *edit.edited;
                sought.ID = record.ID;
                return IsSameInFile(record, sought);
            });
            if (written != later.end()) {
                later.erase(written);
            } else if (const int id = records.Append(*edit.edited); newIds != nullptr) {
                newIds->emplace(edit.edited->ID, id);
            }
            continue;
        }
        const Record* loaded = records.Find(edit.stored->ID);
        const Record* present = loaded != nullptr ? loaded : elsewhere.Find(edit.stored->ID);
        const bool isDone = present == nullptr ? !edit.edited && elsewhere.IsWhole()
                                               : edit.edited && IsSameInFile(*present, *edit.edited);
        if (isDone) {
            continue;
        }
        if (loaded == nullptr || !IsSameInFile(*loaded, *edit.stored)) {
            refused.push_back({edit, present == nullptr ? std::nullopt : std::optional(*present)});
        } else if (edit.edited) {
            records.Replace(*edit.edited);
        } else {
            records.Remove(loaded->ID);
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
