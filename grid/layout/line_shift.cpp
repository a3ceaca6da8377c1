#include "grid/layout/line_shift.h"

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

int& LineOf(CCellID& cell, Qt::Orientation lines) {
    return lines == Qt::Vertical ? cell.row : cell.col;
}

// The first and the last line of a range.
std::pair<int&, int&> LinesOf(CCellRange& range, Qt::Orientation lines) {
    const bool rows = lines == Qt::Vertical;
    return {rows ? range.minRow : range.minCol, rows ? range.maxRow : range.maxCol};
}

}  // namespace

void ShiftForInsert(CCellID& cell, Qt::Orientation lines, int at, int count) {
    if (cell.IsValid() && LineOf(cell, lines) >= at) {
        LineOf(cell, lines) += count;
    }
}

void ShiftForRemove(CCellID& cell, Qt::Orientation lines, int at, int count) {
    int& line = LineOf(cell, lines);
    if (!cell.IsValid() || line < at) {
        return;
    }
    if (line < at + count) {
        cell = CCellID{};
    } else {
        line -= count;
    }
}

void ShiftForInsert(CCellRange& range, Qt::Orientation lines, int at, int count) {
    const auto [first, last] = LinesOf(range, lines);
    if (at <= first) {
        first += count;
    }
    if (at <= last) {
        last += count;
    }
}

void ShiftForRemove(CCellRange& range, Qt::Orientation lines, int at, int count) {
    const auto newPlace = [=](int number) { return number < at ? number : std::max(at, number - count); };
    const auto [first, last] = LinesOf(range, lines);
    const bool lastRemoved = last >= at && last < at + count;
    first = newPlace(first);
    last = lastRemoved ? at - 1 : newPlace(last);
}

}  // namespace quorvane
