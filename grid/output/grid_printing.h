// Printing a grid: its headings on each page, the texts of its cells, and the number of the page.
#pragma once

#include <QPrinter>

#include "grid/output/grid_pages.h"

class QPainter;

namespace quorvane {

class CGridCtrl;

// Prints the pages that the printer is set to print. False when there is nothing to print or the printer (or
// the file that it prints into) refuses.
bool PrintGrid(const CGridCtrl& grid, QPrinter& printer);

// Draws the pages of a grid, which must stay as it is meanwhile.
class GridPrinting {
public:
    // paper: the printable area in pixels of the screen. A grid that is too wide is made smaller, but not so
    // small that it cannot be read; what is still too wide goes on further pages.
    GridPrinting(const CGridCtrl& grid, const QSizeF& paper);

    int PageCount() const { return m_pages.Count(); }
    const GridPages& Pages() const { return m_pages; }
    // page counts from 0; the painter's units are pixels of the screen, its origin the printable area's.
    void DrawPage(QPainter& painter, int page) const;

private:
    double Scale() const;
    QSize Room() const;
    void DrawPart(QPainter& painter, const GridAxis::Lines& rows, const GridAxis::Lines& columns,
                  const QPoint& at) const;
    void DrawCell(QPainter& painter, CCellID cell, const QRect& rect) const;

    const CGridCtrl& m_grid;
    QSizeF m_paper;
    GridPages m_pages;
};

}  // namespace quorvane
