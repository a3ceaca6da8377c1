// Printing a grid: on each page the title and the date, its headings, the texts of its cells, and the number
// of the page.
#pragma once

#include <QPrinter>

#include "grid/output/grid_pages.h"

class QPainter;

namespace quorvane {

class GridCore;
struct GridLooks;

// Whether the grid is too wide for the printer's page, upright and at full size.
bool IsWiderThanPage(const GridCore& core, int screenDpi, const QPrinter& printer);

// Prints the pages that the printer is set to print; its document name is the title. False when there is
// nothing to print or the printer (or the file that it prints into) refuses. screenDpi: pixels an inch of the
// screen that the sizes are meant for.
bool PrintGrid(const GridCore& core, const GridLooks& looks, int screenDpi, QPrinter& printer);

// Draws the pages of a grid. The grid must not change meanwhile.
class GridPrinting {
public:
    // paper: the printable area in pixels of the screen. A grid that is too wide is made smaller, down to a
    // size that can still be read; the columns that do not fit then go on further pages.
    GridPrinting(const GridCore& core, const GridLooks& looks, const QSizeF& paper, const CString& title);

    int PageCount() const { return m_pages.Count(); }
    const GridPages& Pages() const { return m_pages; }
    // page counts from 0; the painter's units are pixels of the screen, its origin the printable area's.
    void DrawPage(QPainter& painter, int page) const;

private:
    void DrawMargins(QPainter& painter, int page) const;
    double Scale() const;
    QSize Room() const;
    void DrawPart(QPainter& painter, const GridAxis::Lines& rows, const GridAxis::Lines& columns,
                  const QPoint& at) const;
    void DrawCell(QPainter& painter, CCellID cell, const QRect& rect) const;

    const GridCore& m_core;
    const GridLooks& m_looks;
    QSizeF m_paper;
    CString m_title;
    GridPages m_pages;
};

}  // namespace quorvane
