// Finds entries of a list again after one of them was added, changed or removed.
#pragma once

#include <algorithm>
#include <vector>

namespace quorvane {

template <typename Value>
int PlaceOf(const Value& value, const std::vector<Value>& values) {
    const auto found = std::find(values.begin(), values.end(), value);
    return found == values.end() ? -1 : static_cast<int>(found - values.begin());
}

// The place of the entry that the list did not hold before, or -1.
template <typename Value>
int NewPlace(const std::vector<Value>& before, const std::vector<Value>& now) {
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

// Where the entry that stood at place before is now. One that has gone has become the entry that is new;
// without such an entry its neighbour stands for it, and -1 when none is left. Place -1 is an entry not held
// before.
template <typename Value>
int MovedPlace(int place, const std::vector<Value>& before, const std::vector<Value>& now) {
    const int moved = place < 0 ? -1 : PlaceOf(before[static_cast<std::size_t>(place)], now);
    if (moved >= 0) {
        return moved;
    }
    const int added = NewPlace(before, now);
    return added >= 0 ? added : std::min(place, static_cast<int>(now.size()) - 1);
}

}  // namespace quorvane
