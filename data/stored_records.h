// What the file holds of some records, to compare them with what an editor shows.
#pragma once

#include <QHash>
#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "data/connection.h"

namespace quorvane {

// Whether a record stands in the file as it is shown, and if not, why not.
enum class Unwritten {
    No,
    Failed,        // its statement failed
    Missing,       // the file has no such record, although its statement ran
    Different,     // another program has changed it since, or the store did not keep a value as it was
    PartDifferent  // the same of what is stored together with it
};

struct UnwrittenReason {
    Unwritten why = Unwritten::No;
    ProviderFailure cause = {};  // of the failed statement
};

// Whether two records are the same in the file, which keeps six digits of a real.
bool IsSameInFile(const tagLAMPHOUSEINFO& left, const tagLAMPHOUSEINFO& right);
bool IsSameInFile(const tagLUMINAIREINFO& left, const tagLUMINAIREINFO& right);
bool IsSameInFile(const tagLUMINAIREUTILIZATIONFACTOR& left, const tagLUMINAIREUTILIZATIONFACTOR& right);
bool IsSameInFile(const tagILLUMINANCESTANDARD& left, const tagILLUMINANCESTANDARD& right);

// Reads the slices of a table in which records are looked for, each slice once.
template <typename Record>
class StoredRecords {
public:
    // Replaces the records by those of a slice. False when not all of them could be read.
    using ReadSlice = std::function<bool(const CString& slice, std::vector<Record>& records)>;
    // The slice in which a record stands.
    using SliceOf = std::function<CString(const Record& record)>;

    // The first slice, if there is one, is read before those of single records.
    StoredRecords(SliceOf sliceOf, ReadSlice read, const std::optional<CString>& first = {})
        : m_sliceOf(std::move(sliceOf)), m_read(std::move(read)) {
        if (first) {
            Read(*first);
        }
    }

    // How that record stands in the file; nothing when that could not be read.
    std::optional<Unwritten> Compare(const Record& record) {
        auto stored = m_records.constFind(record.ID);
        if (stored == m_records.constEnd()) {
            Read(m_sliceOf(record));
            stored = m_records.constFind(record.ID);
        }
        if (stored != m_records.constEnd()) {
            return IsSameInFile(*stored, record) ? Unwritten::No : Unwritten::Different;
        }
        return m_isComplete ? std::optional(Unwritten::Missing) : std::nullopt;
    }

    // The record with that ID in the slices that have been read, or null.
    const Record* Find(int id) const {
        const auto stored = m_records.constFind(id);
        return stored == m_records.constEnd() ? nullptr : &*stored;
    }

private:
    void Read(const CString& slice) {
        if (!m_slices.insert(slice).second) {
            return;
        }
        std::vector<Record> records;
        m_isComplete = m_read(slice, records) && m_isComplete;
        m_records.reserve(m_records.size() + static_cast<qsizetype>(records.size()));
        for (Record& record : records) {
            const int id = record.ID;
            m_records.insert(id, std::move(record));
        }
    }

    SliceOf m_sliceOf;
    ReadSlice m_read;
    QHash<int, Record> m_records;  // by ID
    std::set<CString> m_slices;    // that have been read
    bool m_isComplete = true;
};

}  // namespace quorvane
