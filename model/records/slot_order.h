// The order of a list whose elements may be removed one by one: which slot is the n-th that is still filled.
//
// Slots are numbered in list order and keep their numbers when others are emptied. Every operation costs a
// time that grows with the logarithm of the number of slots. As long as no slot is empty, nothing is stored.
#pragma once

#include <vector>

namespace quorvane {

class SlotOrder {
public:
    // Forgets all slots and makes `count` filled ones.
    void Reset(int count);
    // Adds a filled slot at the end and returns its number.
    int Append();
    // Empties a filled slot, and fills an empty one again.
    void Empty(int slot);
    void Fill(int slot);

    int SlotCount() const { return m_slotCount; }
    int FilledCount() const { return m_filledCount; }
    bool IsFilled(int slot) const;
    // The filled slot at a position, counted from 0, and the position of a filled slot. An empty slot has the
    // position of the next filled one.
    int SlotAt(int position) const;
    int PositionOf(int slot) const;

private:
    int FilledBefore(int slot) const;
    void Count(int slot, int filled);

    // A binary indexed tree: element i - 1 holds the number of filled slots among the last (i & -i) of the
    // first i. Built when the first slot is emptied.
    std::vector<int> m_tree;
    int m_slotCount = 0;
    int m_filledCount = 0;
};

}  // namespace quorvane
