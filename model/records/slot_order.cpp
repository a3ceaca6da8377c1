#include "model/records/slot_order.h"

#include <bit>
#include <cstddef>

namespace quorvane {
namespace {

int LowestBit(int number) {
    return number & -number;
}

size_t Element(int number) {
    return static_cast<size_t>(number - 1);
}

}  // namespace

void SlotOrder::Reset(int count) {
    m_tree.clear();
    m_slotCount = count;
    m_filledCount = count;
}

int SlotOrder::Append() {
    const int slot = m_slotCount++;
    ++m_filledCount;
    if (!m_tree.empty()) {
        const int number = m_slotCount;
        m_tree.push_back(1 + FilledBefore(slot) - FilledBefore(number - LowestBit(number)));
    }
    return slot;
}

void SlotOrder::Empty(int slot) {
    if (m_tree.empty()) {
        m_tree.resize(static_cast<size_t>(m_slotCount));
        for (int number = 1; number <= m_slotCount; ++number) {
            m_tree[Element(number)] = LowestBit(number);
        }
    }
    Count(slot, -1);
}

void SlotOrder::Fill(int slot) {
    Count(slot, 1);
}

bool SlotOrder::IsFilled(int slot) const {
    return m_tree.empty() || FilledBefore(slot + 1) > FilledBefore(slot);
}

int SlotOrder::SlotAt(int position) const {
    if (m_tree.empty()) {
        return position;
    }
    int slot = 0;
    for (int step = static_cast<int>(std::bit_floor(m_tree.size())); step > 0; step /= 2) {
        if (slot + step <= m_slotCount && m_tree[Element(slot + step)] <= position) {
            slot += step;
            position -= m_tree[Element(slot)];
        }
    }
    return slot;
}

int SlotOrder::PositionOf(int slot) const {
    return m_tree.empty() ? slot : FilledBefore(slot);
}

int SlotOrder::FilledBefore(int slot) const {
    int filled = 0;
    for (int number = slot; number > 0; number -= LowestBit(number)) {
        filled += m_tree[Element(number)];
    }
    return filled;
}

// Counts the slot as filled (1) or no longer filled (-1).
void SlotOrder::Count(int slot, int filled) {
    m_filledCount += filled;
    for (int number = slot + 1; number <= m_slotCount; number += LowestBit(number)) {
        m_tree[Element(number)] += filled;
    }
}

}  // namespace quorvane
