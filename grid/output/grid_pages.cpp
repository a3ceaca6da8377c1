#include "grid/output/grid_pages.h"

#include <algorithm>

#include "grid/grid_ctrl.h"

namespace quorvane {
namespace {

// Whether a block is cut when one page ends with the line before `line`.
using Cuts = bool (*)(const CGridCtrl& grid, int line);

bool CutsRows(const CGridCtrl& grid, int row) {
    for (int column = 0; column < grid.GetColumnCount(); ++column) {
        if (grid.MergeExtent(row, column).minRow < row) {
            return true;
        }
    }
    return false;
}

bool CutsColumns(const CGridCtrl& grid, int column) {
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        if (grid.MergeExtent(row, column).minCol < column) {
            return true;
        }
    }
    return false;
}

std::vector<GridAxis::Lines> Split(const CGridCtrl& grid, const GridAxis& axis, int length, Cuts cuts) {
    std::vector<GridAxis::Lines> parts;
    const int room = length - axis.FixedLength();
    for (int first = axis.FixedCount(); first < axis.Count();) {
        int next = first + 1;  // a page without a line would never come to an end
        while (next < axis.Count() && axis.Start(next + 1) - axis.Start(first) <= room) {
            ++next;
        }
        int whole = next;
        while (whole > first && whole < axis.Count() && cuts(grid, whole)) {
            --whole;
        }
        next = whole > first ? whole : next;
        parts.push_back({first, next - 1});
        first = next;
    }
    if (parts.empty() && axis.Count() > 0) {
        parts.push_back({axis.Count(), axis.Count() - 1});  // headings alone
    }
    return parts;
}

}  // namespace

GridPages::GridPages(const CGridCtrl& grid, const QSize& room)
    : m_rows(Split(grid, grid.Layout().rows, room.height(), CutsRows)),
      m_columns(Split(grid, grid.Layout().columns, room.width(), CutsColumns)) {}

}  // namespace quorvane
