// Draws and measures the text of a cell, whatever it holds, at a cost bounded by what can be seen of it.
#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>

#include "grid/grid_types.h"

namespace quorvane {

// Draws text inside rect by the CellFormat bits, in the painter's font and pen, clipped to rect. Control
// characters and line ends are drawn as blanks where the text is on a single line.
void DrawCellText(QPainter& painter, const QRect& rect, const CString& text, unsigned format);

// Whether DrawCellText shows all of text in a rectangle of this size.
bool CellTextFits(const QFont& font, const QSize& size, const CString& text, unsigned format);

// Width of text on a single line, not more than limit pixels.
int CellTextWidth(const QFont& font, const CString& text, int limit);

// Qt alignment of the CellFormat bits.
Qt::Alignment CellTextAlignment(unsigned format);

// Average width of a letter by which columns are sized, in pixels.
int AverageCharWidth();

}  // namespace quorvane
