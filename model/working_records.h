// WorkingRecords: the records that a page shows, as the user has changed them since they were loaded.
//
// A stored record has an ID above 0. One added on the page has a provisional ID below 0 (-1, -2, …, from -1
// again after every load) until it is stored. Nothing here touches a screen or a database: Submit is handed
// the three statements to run.
#pragma once

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace quorvane {

// What a submit could not write.
struct SubmitFailures {
    int writes = 0;   // records neither inserted nor updated
    int deletes = 0;  // records still in the file

    bool None() const { return writes == 0 && deletes == 0; }
};

template <typename Record>
class WorkingRecords {
public:
    const std::vector<Record>& Records() const { return m_records; }

    bool IsModified() const { return m_modified; }
    void SetModified(bool modified = true) { m_modified = modified; }

    // The record with that ID, or null. Valid until records are added or removed.
    const Record* Find(int id) const {
        const auto found = Place(id);
        return found == m_records.end() ? nullptr : &*found;
    }

    // Appends a record under the next provisional ID, which it returns.
    int Append(Record record) {
        record.ID = --m_lastProvisionalId;
        m_records.push_back(std::move(record));
        m_modified = true;
        return m_lastProvisionalId;
    }

    // Overwrites the record of the same ID. A record that says nothing new leaves the modified flag alone.
    void Replace(const Record& record) {
        const auto found = Place(record.ID);
        if (found == m_records.end()) {
            m_modified = true;
        } else if (!(*found == record)) {
            m_records[static_cast<size_t>(found - m_records.begin())] = record;
            m_modified = true;
        }
    }

    // Takes the record with that ID out, to be deleted at the next submit. The modified flag is the caller's.
    void Remove(int id) {
        const auto found = Place(id);
        if (found != m_records.end()) {
            m_deleted.push_back(*found);
            m_records.erase(found);
        }
    }

    // Forgets pending deletions and the modified flag; what is shown is about to be loaded anew.
    void DiscardChanges() {
        m_deleted.clear();
        m_modified = false;
    }

    // Starts a load: the modified flag is cleared and provisional IDs begin again. Deletions of stored
    // records that were confirmed before stay pending; HideDeleted keeps them off the screen. Returns the
    // array to load into.
    std::vector<Record>& BeginLoad() {
        std::erase_if(m_deleted, [](const Record& record) { return record.ID < 0; });
        m_modified = false;
        m_unwritten.clear();
        m_lastProvisionalId = 0;
        return m_records;
    }

    // Takes loaded records out again that are to be deleted at the next submit.
    void HideDeleted() {
        std::erase_if(m_records, [this](const Record& record) {
            return std::any_of(m_deleted.begin(), m_deleted.end(),
                               [&record](const Record& deleted) { return deleted.ID == record.ID; });
        });
    }

    // Whether the last submit could not write this record.
    bool IsUnwritten(int id) const { return m_unwritten.contains(id); }

    // Whether the last submit left anything undone.
    bool HasUnwritten() const { return !m_unwritten.empty(); }

    // Writes the record with that ID, which must be there, at once and leaves what is pending as it is.
    // Returns its ID from now on, which a new record has been given even when its writing then failed.
    struct OneWritten {
        int id;
        bool written;
    };
    template <typename Insert, typename Update>
    OneWritten SubmitOne(int id, Insert insert, Update update) {
        m_unwritten.erase(id);
        Record& record = m_records[static_cast<size_t>(Place(id) - m_records.begin())];
        const bool written = Write(record, insert, update);
        return {record.ID, written};
    }

    // Writes every record that isBlank does not skip (insert for a provisional ID, update otherwise), then
    // runs the deletions in their order, and clears what was pending. insert stores the new ID into its
    // record. A failed statement stops nothing: it is counted, its record is remembered as unwritten, and one
    // that could not be deleted comes back at the end, for it still stands in the file.
    template <typename IsBlank, typename Insert, typename Update, typename Delete>
    SubmitFailures Submit(IsBlank isBlank, Insert insert, Update update, Delete erase) {
        SubmitFailures failures;
        m_unwritten.clear();
        for (Record& record : m_records) {
            if (isBlank(record)) {
                continue;
            }
            failures.writes += Write(record, insert, update) ? 0 : 1;
        }
        for (Record& record : m_deleted) {
            if (!erase(record.ID) && record.ID > 0) {
                ++failures.deletes;
                m_unwritten.insert(record.ID);
                m_records.push_back(std::move(record));
            }
        }
        DiscardChanges();
        return failures;
    }

private:
    template <typename Insert, typename Update>
    bool Write(Record& record, Insert insert, Update update) {
        const bool written = record.ID < 0 ? insert(record) : update(record);
        if (!written) {
            m_unwritten.insert(record.ID);
        }
        return written;
    }

    auto Place(int id) const {
        return std::find_if(m_records.begin(), m_records.end(),
                            [id](const Record& record) { return record.ID == id; });
    }

    std::vector<Record> m_records;
    std::vector<Record> m_deleted;  // in order of deletion
    std::set<int> m_unwritten;      // IDs that the last submit failed to write
    int m_lastProvisionalId = 0;
    bool m_modified = false;
};

}  // namespace quorvane
