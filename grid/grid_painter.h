// Paints the visible cells of a grid; the cost depends on the window's size, not on the number of rows.
#pragma once

#include <QPainter>
#include <QRect>

#include "grid/grid_types.h"
#include "grid/layout/grid_axis.h"

namespace quorvane {

class CGridCtrl;

class GridPainter {
public:
    GridPainter(const CGridCtrl& grid, QPainter& painter);

    // Paints everything inside area (window coordinates).
    void Paint(const QRect& area);

private:
    // One of the four parts of the window: the corner, the two strips of headings, the scrolling cells.
    void PaintPart(const GridAxis::Lines& rows, const GridAxis::Lines& columns, const QRect& clip);
    void PaintBlock(const CCellRange& block);
    void PaintBackground(CCellID cell, const QRect& rect, const QColor& back, bool fixed);
    void PaintFocus(const QRect& clip);
    QColor BackColour(CCellID cell, bool fixed) const;

    const CGridCtrl& m_grid;
    QPainter& m_painter;
};

}  // namespace quorvane
