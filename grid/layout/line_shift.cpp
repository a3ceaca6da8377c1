#include "grid/layout/line_shift.h"

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

// The first and the last line of a range.
std::pair<int&, int&> LinesOf(CCellRange& range, int CCellID::*line) {
    const bool rows = line == &CCellID::row;
    return {rows ? range.minRow : range.minCol, rows ? range.maxRow : range.maxCol};
}

}  // namespace

void ShiftForInsert(CCellID& cell, int CCellID::*line, int at, int count) {
    if (cell.IsValid() && cell.*line >= at) {
        cell.*line += count;
    }
}

void ShiftForRemove(CCellID& cell, int CCellID::*line, int at, int count) {
    if (!cell.IsValid() || cell.*line < at) {
        return;
    }
    if (cell.*line < at + count) {
        cell = CCellID{};
    } else {
        cell.*line -= count;
    }
}

void ShiftForInsert(CCellRange& range, int CCellID::*line, int at, int count) {
    const auto [first, last] = LinesOf(range, line);
    if (at <= first) {
        first += count;
    }
    if (at <= last) {
        last += count;
    }
}

void ShiftForRemove(CCellRange& range, int CCellID::*line, int at, int count) {
    const auto newPlace = [=](int number) { return number < at ? number : std::max(at, number - count); };
    const auto [first, last] = LinesOf(range, line);
    const bool lastRemoved = last >= at && last < at + count;
    first = newPlace(first);
    last = lastRemoved ? at - 1 : newPlace(last);
}

}  // namespace quorvane
