// Where the grid's cells lie on the screen: both axes together; arithmetic only, no painting.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include "grid/grid_types.h"
#include "grid/layout/grid_axis.h"

namespace quorvane {

// All rectangles and points are pixels from the top-left corner of the grid's window (its viewport).
struct GridLayout {
    GridAxis rows;
    GridAxis columns;

    GridAxis& Axis(Qt::Orientation lines) { return lines == Qt::Vertical ? rows : columns; }

    void SetViewSize(const QSize& size);
    // True when all four edges lie in the grid and in order.
    bool Holds(const CCellRange& range) const;
    bool Holds(CCellID cell) const;
    bool IsFixed(CCellID cell) const;
    // All cells that are not fixed; not valid when there are none.
    CCellRange ScrollingCells() const;
    // The rectangle of a block of cells, wherever it lies.
    QRect BlockRect(const CCellRange& block) const;
    // The cell at a point, or none.
    CCellID CellAt(const QPoint& position) const;
    // The part of the window in which cells scroll.
    QRect ScrollingArea() const;
    // The part of the window without headings.
    QRect BodyArea() const;
    // The part of the window in which a cell can be seen.
    QRect AreaOf(CCellID cell) const;
};

}  // namespace quorvane
