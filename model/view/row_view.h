// RowView: which of the working records a grid shows, and in which order. The records themselves stay as they
// are, and so does what is submitted.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "model/records/working_records.h"
#include "model/view/sorting.h"

namespace quorvane {

// By what the records are sorted: by number if there is one, otherwise by text.
template <typename Record>
struct RowOrder {
    std::function<CString(const Record&)> text;
    std::function<double(const Record&)> number;
    SortDirection direction = SortDirection::Ascending;
};

template <typename Record>
class RowView {
public:
    using Condition = std::function<bool(const Record&)>;

    // The records outlive the view.
    explicit RowView(const WorkingRecords<Record>& records) : m_records(records) {}

    // Shows the records that meet the condition (none: all) in that order (none: their own). Records that
    // change later keep their rows until the next call.
    void Arrange(const std::optional<RowOrder<Record>>& order, const Condition& condition) {
        m_slots.reset();
        if (!order && !condition) {
            return;
        }
        std::vector<int> slots;
        for (int position = 0; position < m_records.Count(); ++position) {
            const int slot = m_records.SlotAt(position);
            if (!condition || condition(m_records.InSlot(slot))) {
                slots.push_back(slot);
            }
        }
        m_slots = order ? Sorted(slots, *order) : std::move(slots);
    }
    // Whether all records are shown in their own order.
    bool IsWhole() const { return !m_slots; }

    int Count() const { return m_slots ? static_cast<int>(m_slots->size()) : m_records.Count(); }
    // The record in a row, counted from 0, and its slot.
    int SlotAt(int row) const { return m_slots ? Slot(row) : m_records.SlotAt(row); }
    const Record& At(int row) const { return m_records.InSlot(SlotAt(row)); }
    // The row of a slot, or -1 for a record that is not shown.
    int RowOf(int slot) const {
        if (!m_slots) {
            return m_records.PositionOf(slot);
        }
        const auto found = std::find(m_slots->begin(), m_slots->end(), slot);
        return found == m_slots->end() ? -1 : static_cast<int>(found - m_slots->begin());
    }

    // To be called after the record of a row was removed, and after a record was appended: it is shown last.
    void NoteRemoved(int row) {
        if (m_slots) {
            m_slots->erase(m_slots->begin() + row);
        }
    }
    void NoteAppended() {
        if (m_slots) {
            m_slots->push_back(m_records.SlotAt(m_records.Count() - 1));
        }
    }

private:
    int Slot(int row) const { return (*m_slots)[static_cast<std::size_t>(row)]; }

    std::vector<int> Sorted(const std::vector<int>& slots, const RowOrder<Record>& order) const {
        const auto values = [&](const auto& valueOf) {
            std::vector<std::decay_t<decltype(valueOf(Record{}))>> result;
            result.reserve(slots.size());
            for (const int slot : slots) {
                result.push_back(valueOf(m_records.InSlot(slot)));
            }
            return result;
        };
        const std::vector<int> sorted = order.number ? SortedByNumber(values(order.number), order.direction)
                                                     : SortedByText(values(order.text), order.direction);
        std::vector<int> result;
        result.reserve(slots.size());
        for (const int index : sorted) {
            result.push_back(slots[static_cast<std::size_t>(index)]);
        }
        return result;
    }

    const WorkingRecords<Record>& m_records;
    std::optional<std::vector<int>> m_slots;  // by row; none while all records are shown in their own order
};

}  // namespace quorvane
