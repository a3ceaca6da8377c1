#include "grid/output/grid_pages.h"

#include <algorithm>

#include "grid/grid_core.h"

namespace quorvane {
namespace {

// Whether a block is cut when one page ends with the line before `line`.
using Cuts = bool (*)(const GridCore& core, int line);

bool CutsRows(const GridCore& core, int row) {
    for (int column = 0; column < core.ColumnCount(); ++column) {
        if (core.Extent({row, column}).minRow < row) {
            return true;
        }
    }
    return false;
}

bool CutsColumns(const GridCore& core, int column) {
    for (int row = 0; row < core.RowCount(); ++row) {
        if (core.Extent({row, column}).minCol < column) {
            return true;
        }
    }
    return false;
}

// The lines up to `end`, by pages.
std::vector<GridAxis::Lines> Split(const GridCore& core, const GridAxis& axis, int end, int length,
                                   Cuts cuts) {
    std::vector<GridAxis::Lines> parts;
    const int room = length - axis.FixedLength();
    for (int first = axis.FixedCount(); first < end;) {
        int next = first + 1;  // a page without a line would never come to an end
        while (next < end && axis.Start(next + 1) - axis.Start(first) <= room) {
            ++next;
        }
        int whole = next;
        while (whole > first && whole < end && cuts(core, whole)) {
            --whole;
        }
        next = whole > first ? whole : next;
        parts.push_back({first, next - 1});
        first = next;
    }
    if (parts.empty() && end > 0) {
        parts.push_back({end, end - 1});  // headings alone
    }
    return parts;
}

}  // namespace

GridPages::GridPages(const GridCore& core, const QSize& room)
    : m_rows(Split(core, core.Layout().rows, core.FilledRowCount(), room.height(), CutsRows)),
      m_columns(Split(core, core.Layout().columns, core.ColumnCount(), room.width(), CutsColumns)) {}

}  // namespace quorvane
