// WorkingRecords: the records that an editor shows, as the user has changed them since they were loaded.
//
// A record added by the user has a provisional ID below 0 (-1, -2, …, from -1 again after every load) until
// it is stored. Another program may have stored negative IDs; the provisional ones then lie below them.
// What the user does can be undone step by step, until a submit or a load; undone to the first step, the
// records are those of the file again, and nothing is pending. Nothing here touches a screen or a database:
// Submit is given the statements to run. Finding, adding and removing a record takes a time that does not
// grow with their number, or with its logarithm only.
#pragma once

#include <QHash>
#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "data/stored_records.h"
#include "model/records/edit_history.h"
#include "model/records/record_statements.h"
#include "model/records/slot_order.h"

namespace quorvane {

// Which IDs new records get: provisional ones, or the next above the highest (records without a database).
enum class NewIds { Provisional, Serial };

template <typename Record>
class WorkingRecords {
public:
    explicit WorkingRecords(NewIds newIds = NewIds::Provisional) : m_newIds(newIds) {}

    // One change of one record. The slot keeps its number until the next load.
    struct Change {
        int slot;                     // or kDraft
        std::optional<Record> other;  // what the slot holds on the other side of the change; none: nothing
    };
    static constexpr int kDraft = -1;

    int Count() const { return m_order.FilledCount(); }
    // The record at a position, counted from 0. Valid until records are added or removed.
    const Record& At(int position) const { return Slot(m_order.SlotAt(position)); }
    int SlotAt(int position) const { return m_order.SlotAt(position); }
    // The record in a slot that is not empty.
    const Record& InSlot(int slot) const { return Slot(slot); }
    // The position of the record in that slot. For an empty slot: of the next record.
    int PositionOf(int slot) const { return m_order.PositionOf(slot); }
    // The record with that ID, or null. Valid until records are added or removed.
    const Record* Find(int id) const {
        const int slot = SlotOf(id);
        return slot < 0 ? nullptr : &Slot(slot);
    }
    // The number from 1 of the row of the record with that ID, which must exist.
    int RowOf(int id) const { return m_order.PositionOf(SlotOf(id)) + 1; }
    // Calls visit(record) for every record in order.
    template <typename Visit>
    void ForEach(Visit visit) const {
        for (int slot = 0; slot < m_order.SlotCount(); ++slot) {
            if (m_order.IsFilled(slot)) {
                visit(Slot(slot));
            }
        }
    }

    bool IsModified() const { return m_modified; }
    void SetModified(bool modified = true) {
        m_modified = modified;
        Tell();
    }
    // Is called after each step, undo, load and submit.
    void SetListener(std::function<void()> listener) { m_listener = std::move(listener); }

    // Appends the record under the next new ID, which is returned.
    int Append(Record record) {
        const StepScope step(*this, {});
        const int id = m_newIds == NewIds::Serial ? ++m_lastNewId : --m_lastNewId;
        record.ID = id;
        Apply({m_order.SlotCount(), std::move(record)});
        m_modified = true;
        return id;
    }

    // Overwrites the record of the same ID. Overwriting with an equal record does not set the modified flag;
    // an unknown ID does.
    void Replace(const Record& record) {
        const int slot = SlotOf(record.ID);
        if (slot >= 0 && Slot(slot) == record) {
            return;
        }
        const StepScope step(*this, {});
        if (slot >= 0) {
            Apply({slot, record});
        }
        m_modified = true;
    }

    // Removes the record with that ID; the next submit deletes it. Leaves the modified flag to the caller.
    void Remove(int id) {
        const int slot = SlotOf(id);
        if (slot >= 0) {
            const StepScope step(*this, {});
            Apply({slot, std::nullopt});
        }
    }

    // What has been entered for a record that is not appended yet. It is never written.
    const Record& Draft() const { return m_draft; }
    void SetDraft(const Record& draft) {
        if (draft != m_draft) {
            const StepScope step(*this, {});
            Apply({kDraft, draft});
        }
    }
    // Begins a new draft, outside the history.
    void ResetDraft(Record draft) { m_draft = std::move(draft); }

    // ---- What differs from the file

    // Whether the record is new, changed or removed, and the file does not have this yet.
    bool IsChanged(int id) const { return m_stored.contains(id); }
    // Counts the record, which must exist, as changed: what is stored together with it has changed.
    void NoteChange(int id) { m_stored.try_emplace(id, *Find(id)); }
    // The record as it is in the file; null for one that is not there.
    const Record* Stored(int id) const {
        const auto stored = m_stored.find(id);
        if (stored == m_stored.end()) {
            return Find(id);
        }
        return stored->second ? &*stored->second : nullptr;
    }
    // Calls visit(stored, edited) for each of these records: what the file holds, if anything, and the record
    // as it is now, or null when it was removed. New records come in the order in which they were appended.
    template <typename Visit>
    void ForEachEdit(Visit visit) const {
        std::for_each(m_stored.rbegin(), m_stored.rend(),
                      [&](const auto& edit) { visit(edit.second, Find(edit.first)); });
    }
    // How many records are new, changed or removed.
    int EditCount() const { return static_cast<int>(m_stored.size()); }
    // How many records of the file the next submit will delete.
    int RemovedCount() const {
        return static_cast<int>(std::count_if(m_deleted.begin(), m_deleted.end(),
                                              [this](const Record& record) { return !IsNew(record.ID); }));
    }

    // How many removed records of the file stood directly before the record at that position, or after the
    // last one.
    int RemovedBefore(int position) const {
        const int from = position == 0 ? 0 : m_order.SlotAt(position - 1);
        const int to = position == Count() ? m_order.SlotCount() : m_order.SlotAt(position);
        return static_cast<int>(
            std::distance(m_removedSlots.lower_bound(from), m_removedSlots.lower_bound(to)));
    }

    // ---- Undo and redo

    // All changes between BeginStep and EndStep are undone at once. Steps may stand inside a step, which they
    // are part of. A change outside a step is one of its own, without a name.
    void BeginStep(const CString& name) { m_history.Begin(name, m_modified); }
    void EndStep() {
        if (m_history.End(m_modified)) {
            Tell();
        }
    }
    void RenameStep(const CString& name) { m_history.Rename(name); }
    // The names of the steps that Undo and Redo would take; null when there is none.
    const CString* UndoName() const { return m_history.UndoName(); }
    const CString* RedoName() const { return m_history.RedoName(); }
    // Undo the last step, or do the step again that was undone last; there must be one. The result holds what
    // was in the slots before the call, and is valid until the next change.
    const std::vector<Change>& Undo() {
        auto& step = m_history.TakeUndo();
        std::for_each(step.changes.rbegin(), step.changes.rend(),
                      [this](Change& change) { Turn(change, Direction::Back); });
        SetModified(step.wasModified || HasUnwritten());
        return step.changes;
    }
    const std::vector<Change>& Redo() {
        auto& step = m_history.TakeRedo();
        for (Change& change : step.changes) {
            Turn(change, Direction::Forth);
        }
        SetModified(step.isModified || HasUnwritten());
        return step.changes;
    }
    // Nothing that was done up to now can be undone any more.
    void EndHistory() {
        m_history.Clear();
        Tell();
    }

    // ---- Loading and submitting

    // Drops pending deletions, the history and the modified flag; the caller is about to load other records.
    void DiscardChanges() {
        m_deleted.clear();
        m_removedSlots.clear();
        m_modified = false;
        EndHistory();
    }

    // Replaces all records by loaded ones. Clears the modified flag and starts the provisional IDs again.
    // Pending deletions of stored records stay pending, and loaded records among them are left out.
    void TakeLoaded(std::vector<Record> records) {
        std::erase_if(m_deleted, [this](const Record& record) { return IsNew(record.ID); });
        std::set<int> deleted;
        for (const Record& record : m_deleted) {
            deleted.insert(record.ID);
        }
        std::erase_if(m_stored, [&deleted](const auto& stored) { return !deleted.contains(stored.first); });
        if (!deleted.empty()) {
            std::erase_if(records, [&deleted](const Record& record) { return deleted.contains(record.ID); });
        }
        m_records = std::move(records);
        m_records.shrink_to_fit();
        m_order.Reset(static_cast<int>(m_records.size()));
        m_slotById.reset();
        m_unwritten.clear();
        m_removedSlots.clear();
        m_modified = false;
        m_lastNewId = 0;
        ForEach([this](const Record& record) { m_lastNewId = std::min(m_lastNewId, record.ID); });
        m_lowestStoredId = m_lastNewId;
        if (m_newIds == NewIds::Serial) {
            ForEach([this](const Record& record) { m_lastNewId = std::max(m_lastNewId, record.ID); });
        }
        EndHistory();
    }

    // Whether the last submit could not write or delete this record, or any record, or the file did not hold
    // it afterwards.
    bool IsUnwritten(int id) const { return m_unwritten.contains(id); }
    bool HasUnwritten() const { return !m_unwritten.empty(); }
    struct UnwrittenRecord {
        Unwritten why = Unwritten::No;
        WriteFailure failure = {};
    };
    UnwrittenRecord WhyUnwritten(int id) const {
        const auto found = m_unwritten.find(id);
        return found == m_unwritten.end() ? UnwrittenRecord() : found->second;
    }

    // Writes the record with that ID, which must exist, at once, and leaves everything else pending. What
    // was done to this record can be undone no more. A record that nobody has changed counts as written even
    // if its update fails: the file holds it as it is. The result holds the record's ID from now on: a new
    // record may have been inserted before a later statement failed.
    struct Saved {
        int id;
        bool written;
        SubmitFailures failures = {};

        // The ID to which other rows of the database may refer, or 0 for a record that was not written.
        int StoredId() const { return written ? id : 0; }
    };
    Saved SubmitOne(int id, const RecordStatements<Record>& statements) {
        m_unwritten.erase(id);
        const int slot = SlotOf(id);
        m_history.Forget([slot](const Change& change) { return change.slot == slot; },
                         [](const Change& change) { return change.slot != kDraft; });
        SubmitFailures failures;
        const bool written = Write(slot, statements, failures);
        return {Slot(slot).ID, written, failures};
    }

    // After a submit: counts a record as unwritten that is not in the file as it stands here, although no
    // statement failed.
    void Compare(StoredRecords<Record>& file, const std::function<bool(const Record&)>& isBlank,
                 SubmitFailures& failures) {
        ForEach([&](const Record& record) {
            if (!isBlank(record)) {
                CompareOne(record, file, failures);
            }
        });
        SetModified(HasUnwritten());
    }
    void CompareOne(const Record& record, StoredRecords<Record>& file, SubmitFailures& failures) {
        if (!IsUnwritten(record.ID)) {
            NoteComparison(record.ID, file.Compare(record), file.Find(record.ID), failures);
        }
    }
    // Notes the result of comparing a record; stored is the record in the file, or null. Without a result
    // the file could not be read.
    void NoteComparison(int id, std::optional<Unwritten> why, const Record* stored,
                        SubmitFailures& failures) {
        failures.unread += why ? 0 : 1;
        if (why.value_or(Unwritten::No) != Unwritten::No) {
            ++failures.different;
            m_unwritten[id] = {.why = *why};
            m_stored[id] = stored == nullptr ? std::nullopt : std::optional(*stored);
        }
    }

    // Writes every record that is not blank (insert for a provisional ID, otherwise update), then runs the
    // pending deletions in their order, and clears what was pending. A failed statement stops nothing: it is
    // counted and its record is remembered as unwritten, unless nobody has changed it. A stored record that
    // could not be deleted is appended again, for it is still in the file.
    SubmitFailures Submit(const RecordStatements<Record>& statements, const ProgressCallback& progress = {}) {
        SubmitFailures failures;
        m_unwritten.clear();
        const int total = Count() + static_cast<int>(m_deleted.size());
        int done = 0;
        const auto tell = [&] {
            ++done;
            if (progress) {
                progress(done, total);
            }
        };
        for (int slot = 0; slot < m_order.SlotCount(); ++slot) {
            if (m_order.IsFilled(slot)) {
                if (!statements.isBlank(Slot(slot))) {
                    Write(slot, statements, failures);
                }
                tell();
            }
        }
        for (Record& record : m_deleted) {
            if (!statements.remove(record.ID) && !IsNew(record.ID)) {
                const WriteFailure failure = FailureFrom(statements);
                failures.Add(failure, 0);
                m_unwritten[record.ID] = {Unwritten::Failed, failure};
                std::erase_if(m_stored, [&record](const auto& stored) { return stored.second == record; });
                Put(m_order.SlotCount(), std::move(record));
            } else {
                m_stored.erase(record.ID);
            }
            tell();
        }
        DiscardChanges();
        SetModified(HasUnwritten());
        return failures;
    }

private:
    enum class Direction { Forth, Back };

    // Every change that the user makes goes through here.
    void Apply(Change change) {
        Turn(change, Direction::Forth);
        m_history.Add(std::move(change));
    }

    // Exchanges what the slot holds for what the change holds. A removed record is deleted by the next
    // submit, unless its appending was undone.
    void Turn(Change& change, Direction direction) {
        if (change.slot == kDraft) {
            std::swap(m_draft, *change.other);
            return;
        }
        std::optional<Record> held = Held(change.slot);
        const int id = held ? held->ID : change.other->ID;
        const auto stored = m_stored.try_emplace(id, held).first;
        if (stored->second == change.other && !IsUnwritten(id)) {
            m_stored.erase(stored);
        }
        if (!change.other) {
            Empty(change.slot);
            if (direction == Direction::Forth) {
                m_deleted.push_back(*held);
                if (!IsNew(id)) {
                    m_removedSlots.insert(change.slot);
                }
            }
        } else if (held) {
            Slot(change.slot) = std::move(*change.other);
        } else {
            Put(change.slot, std::move(*change.other));
            if (direction == Direction::Back) {
                Undelete(id);
                m_removedSlots.erase(change.slot);
            }
        }
        change.other = std::move(held);
    }

    std::optional<Record> Held(int slot) const {
        const bool isFilled = slot < m_order.SlotCount() && m_order.IsFilled(slot);
        return isFilled ? std::optional<Record>(Slot(slot)) : std::nullopt;
    }
    void Empty(int slot) {
        m_order.Empty(slot);
        if (m_slotById) {
            m_slotById->remove(Slot(slot).ID);
        }
        Slot(slot) = {};
    }
    // Puts the record into an empty slot, or into a new one at the end.
    void Put(int slot, Record record) {
        if (m_slotById) {
            m_slotById->insert(record.ID, slot);
        }
        if (slot == m_order.SlotCount()) {
            m_order.Append();
            m_records.push_back(std::move(record));
        } else {
            m_order.Fill(slot);
            Slot(slot) = std::move(record);
        }
    }
    void Undelete(int id) {
        const auto last = std::find_if(m_deleted.rbegin(), m_deleted.rend(),
                                       [id](const Record& record) { return record.ID == id; });
        if (last != m_deleted.rend()) {
            m_deleted.erase(std::next(last).base());
        }
    }

    bool Write(int slot, const RecordStatements<Record>& statements, SubmitFailures& failures) {
        Record& record = Slot(slot);
        const int id = record.ID;
        const bool ran = IsNew(id) ? statements.insert(record) : statements.update(record);
        const bool written = ran || !IsChanged(id);
        auto stored = m_stored.extract(id);
        if (!written) {
            const WriteFailure failure = FailureFrom(statements);
            failures.Add(failure, m_order.PositionOf(slot) + 1);
            m_unwritten[record.ID] = {Unwritten::Failed, failure};
            stored.key() = record.ID;
            m_stored.insert(std::move(stored));
        }
        if (record.ID != id && m_slotById) {
            m_slotById->remove(id);
            m_slotById->insert(record.ID, slot);
        }
        return written;
    }

    static WriteFailure FailureFrom(const RecordStatements<Record>& statements) {
        return statements.cause ? statements.cause() : WriteFailure{};
    }
    void Tell() const {
        if (m_listener) {
            m_listener();
        }
    }
    bool IsNew(int id) const { return id < m_lowestStoredId; }

    Record& Slot(int slot) { return m_records[static_cast<size_t>(slot)]; }
    const Record& Slot(int slot) const { return m_records[static_cast<size_t>(slot)]; }

    // The slot of the record with that ID, or -1. Many records are loaded and only looked at, so the index is
    // built when the first ID is asked for.
    int SlotOf(int id) const {
        if (!m_slotById) {
            m_slotById.emplace();
            m_slotById->reserve(m_order.FilledCount());
            for (int slot = m_order.SlotCount() - 1; slot >= 0; --slot) {
                if (m_order.IsFilled(slot)) {
                    m_slotById->insert(Slot(slot).ID, slot);
                }
            }
        }
        return m_slotById->value(id, -1);
    }

    NewIds m_newIds;
    std::vector<Record> m_records;  // by slot; an emptied slot holds an empty record
    SlotOrder m_order;
    mutable std::optional<QHash<int, int>> m_slotById;
    std::vector<Record> m_deleted;               // in order of deletion
    std::set<int> m_removedSlots;                // of those since the last load that are in the file
    std::map<int, UnwrittenRecord> m_unwritten;  // by ID: what the last submit did not leave in the file
    // By ID: what the file holds, if anything, of the records that differ from it.
    std::map<int, std::optional<Record>> m_stored;
    EditHistory<Change> m_history{1'000'000};
    Record m_draft = {};
    std::function<void()> m_listener;
    int m_lastNewId = 0;
    int m_lowestStoredId = 0;  // or 0
    bool m_modified = false;
};

}  // namespace quorvane
