// Follows an entry of a list without duplicates over one change of the list.
#pragma once

#include <algorithm>
#include <vector>

namespace quorvane {

template <typename Value>
int IndexOf(const Value& value, const std::vector<Value>& values) {
    const auto found = std::find(values.begin(), values.end(), value);
    return found == values.end() ? -1 : static_cast<int>(found - values.begin());
}

// The index of the entry that the list did not hold before, or -1.
template <typename Value>
int IndexOfNewEntry(const std::vector<Value>& before, const std::vector<Value>& now) {
    auto expected = before.begin();
    for (auto entry = now.begin(); entry != now.end(); ++entry) {
        if (expected == before.end() || *expected != *entry) {
            expected = std::find(before.begin(), before.end(), *entry);
            if (expected == before.end()) {
                return static_cast<int>(entry - now.begin());
            }
        }
        ++expected;
    }
    return -1;
}

// The index, after one entry was added, changed or removed, of the entry that had `index` before. A changed
// entry is the new one. In place of a removed entry comes its neighbour, or -1 when none is left. An index of
// -1 before stands for the entry that was then added.
template <typename Value>
int IndexAfterChange(int index, const std::vector<Value>& before, const std::vector<Value>& now) {
    const int kept = index < 0 ? -1 : IndexOf(before[static_cast<std::size_t>(index)], now);
    if (kept >= 0) {
        return kept;
    }
    const int added = IndexOfNewEntry(before, now);
    return added >= 0 ? added : std::min(index, static_cast<int>(now.size()) - 1);
}

}  // namespace quorvane
