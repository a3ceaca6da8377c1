// A sequence of small items in which inserting or removing again and again at one place costs next to
// nothing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace quorvane {

// The unused slots form one gap inside the array. It moves to where items are inserted or removed, so only
// the items between the old place and the new one are moved. Unused slots hold Item().
template <typename Item>
class GapVector {
public:
    int Count() const { return static_cast<int>(m_slots.size() - m_gapLength); }
    Item& operator[](int index) { return m_slots[SlotOf(index)]; }

    // The new items are Item().
    void Insert(int at, int count) {
        const auto added = static_cast<std::size_t>(count);
        if (m_gapLength < added) {
            Grow(added);
        }
        MoveGap(static_cast<std::size_t>(at));
        m_gapStart += added;
        m_gapLength -= added;
    }

    void Remove(int at, int count) {
        MoveGap(static_cast<std::size_t>(at));
        const auto first = Place(m_gapStart + m_gapLength);
        for (auto item = first; item != first + count; ++item) {
            *item = Item();
        }
        m_gapLength += static_cast<std::size_t>(count);
        if (m_gapLength == m_slots.size()) {
            *this = GapVector();
        }
    }

private:
    std::size_t SlotOf(int index) const {
        const auto slot = static_cast<std::size_t>(index);
        return slot < m_gapStart ? slot : slot + m_gapLength;
    }
    auto Place(std::size_t slot) { return m_slots.begin() + static_cast<std::ptrdiff_t>(slot); }

    // Puts the gap at the end, longer than before by at least `added`.
    void Grow(std::size_t added) {
        MoveGap(m_slots.size() - m_gapLength);
        const std::size_t slots = std::max(m_gapStart + added, m_slots.size() * 2);
        m_slots.resize(slots);
        m_gapLength = slots - m_gapStart;
    }

    void MoveGap(std::size_t start) {
        const std::size_t gapEnd = m_gapStart + m_gapLength;
        if (m_gapLength == 0) {
            m_gapStart = start;
        } else if (start < m_gapStart) {
            std::move_backward(Place(start), Place(m_gapStart), Place(gapEnd));
        } else {
            std::move(Place(gapEnd), Place(start + m_gapLength), Place(m_gapStart));
        }
        m_gapStart = start;
    }

    std::vector<Item> m_slots;
    std::size_t m_gapStart = 0;
    std::size_t m_gapLength = 0;
};

}  // namespace quorvane
