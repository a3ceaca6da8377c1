#include "grid/line_shift.h"

#include <algorithm>

namespace quorvane {

void ShiftForInsert(int& first, int& last, int at, int count) {
    if (at <= first) {
        first += count;
    }
    if (at <= last) {
        last += count;
    }
}

void ShiftForRemove(int& first, int& last, int at, int count) {
    const auto newPlace = [=](int line) { return line < at ? line : std::max(at, line - count); };
    const bool lastRemoved = last >= at && last < at + count;
    first = newPlace(first);
    last = lastRemoved ? at - 1 : newPlace(last);
}

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

}  // namespace quorvane
