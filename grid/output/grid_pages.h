// How a grid is laid out on the pages of paper; arithmetic only.
#pragma once

#include <QSize>
#include <utility>
#include <vector>

#include "grid/grid_types.h"
#include "grid/layout/grid_axis.h"

namespace quorvane {

class GridCore;

// The append row is left out. Each page shows the fixed rows and columns and a part of the others. Pages go
// down the rows first, then to the right. A merged block is cut only where it is longer than a page.
class GridPages {
public:
    // room: the size of a page in the pixels in which rows and columns are measured.
    GridPages(const GridCore& core, const QSize& room);

    // At least one as soon as the grid has a cell.
    int Count() const { return static_cast<int>(m_rows.size() * m_columns.size()); }
    // The scrolling rows and columns on a page, counted from 0.
    GridAxis::Lines Rows(int page) const { return m_rows[static_cast<std::size_t>(page) % m_rows.size()]; }
    GridAxis::Lines Columns(int page) const {
        return m_columns[static_cast<std::size_t>(page) / m_rows.size()];
    }

private:
    std::vector<GridAxis::Lines> m_rows;
    std::vector<GridAxis::Lines> m_columns;
};

}  // namespace quorvane
