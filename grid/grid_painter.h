// Paints the visible cells of a grid; the cost depends on the window's size, not on the number of rows.
#pragma once

#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QRect>
#include <functional>
#include <vector>

#include "grid/grid_types.h"
#include "grid/layout/grid_axis.h"

class QWidget;

namespace quorvane {

class CGridCellBase;
class GridCore;

// The colours and the state of the window that a grid is painted in.
struct GridLooks {
    static constexpr QColor kGridLine{0xC0, 0xC0, 0xC0};

    QPalette palette = {};
    QColor background = {};  // invalid: the palette's
    bool enabled = true;
    bool hasFocus = false;
    CCellID pressedCell = {};  // whose button is held down
    int pressedButton = -1;
    CCellRange dropRange = {};                   // where a dragged block would go; not valid: none is dragged
    const QWidget* widget = nullptr;             // for the style; may be null
    const std::vector<QIcon>* images = nullptr;  // what the cells' image numbers mean; may be null
    // The marks of a cell (CellMark), and whether it is one that was sought; may be null.
    const std::function<unsigned(CCellID)>* marks = nullptr;
    const std::function<bool(CCellID)>* highlights = nullptr;

    QColor Background() const { return background.isValid() ? background : palette.color(QPalette::Base); }
    QColor FixedBackground() const { return palette.color(QPalette::Button); }
    QColor Shadow() const { return palette.color(QPalette::Dark); }
};

class GridPainter {
public:
    GridPainter(const GridCore& core, const GridLooks& looks, QPainter& painter)
        : m_core(core), m_looks(looks), m_painter(painter) {}

    // Paints everything inside area (window coordinates).
    void Paint(const QRect& area);

private:
    // One of the four parts of the window: the corner, the two strips of headings, the scrolling cells.
    void PaintPart(const GridAxis::Lines& rows, const GridAxis::Lines& columns, const QRect& clip);
    void PaintBlock(const CCellRange& block);
    void PaintBackground(CCellID cell, const QRect& rect, const QColor& back, bool fixed);
    void PaintFocus(const QRect& area);
    void PaintMarks(unsigned marks, const QRect& rect, const QColor& back);
    QColor BackColour(CCellID cell, bool fixed) const;
    QColor TextColour(const CGridCellBase& cell, const QColor& back, bool fixed) const;

    const GridCore& m_core;
    const GridLooks& m_looks;
    QPainter& m_painter;
};

}  // namespace quorvane
