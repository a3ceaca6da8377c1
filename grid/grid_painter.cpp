#include "grid/grid_painter.h"

#include <QPalette>
#include <algorithm>

#include "grid/grid_ctrl.h"

namespace quorvane {
namespace {

// Part of `over` in the mixture is percent.
QColor Mix(const QColor& under, const QColor& over, int percent) {
    const auto channel = [=](int a, int b) { return (a * (100 - percent) + b * percent) / 100; };
    return {channel(under.red(), over.red()), channel(under.green(), over.green()),
            channel(under.blue(), over.blue())};
}

}  // namespace

GridPainter::GridPainter(const CGridCtrl& grid, QPainter& painter) : m_grid(grid), m_painter(painter) {}

void GridPainter::Paint(const QRect& area) {
    const GridLayout& layout = m_grid.Layout();
    const QRect scrolling = layout.ScrollingArea();
    const int fixedRight = scrolling.left() - 1;
    const int fixedBottom = scrolling.top() - 1;

    m_painter.fillRect(area, m_grid.GetBackgroundColour());
    const auto fixedRows = layout.rows.VisibleFixed(area.top(), area.bottom());
    const auto fixedColumns = layout.columns.VisibleFixed(area.left(), area.right());
    const auto rows = layout.rows.VisibleScrolling(area.top(), area.bottom());
    const auto columns = layout.columns.VisibleScrolling(area.left(), area.right());

    const int farRight = std::max(scrolling.right(), fixedRight);
    const int farBottom = std::max(scrolling.bottom(), fixedBottom);
    PaintPart(rows, columns, area & scrolling);
    PaintFocus(area & scrolling);
    PaintPart(fixedRows, columns, area & QRect(QPoint(fixedRight + 1, 0), QPoint(farRight, fixedBottom)));
    PaintPart(rows, fixedColumns, area & QRect(QPoint(0, fixedBottom + 1), QPoint(fixedRight, farBottom)));
    PaintPart(fixedRows, fixedColumns, area & QRect(QPoint(0, 0), QPoint(fixedRight, fixedBottom)));
}

void GridPainter::PaintPart(const GridAxis::Lines& rows, const GridAxis::Lines& columns, const QRect& clip) {
    if (clip.isEmpty() || rows.IsEmpty() || columns.IsEmpty()) {
        return;
    }
    m_painter.save();
    m_painter.setClipRect(clip);
    for (int row = rows.first; row <= rows.last; ++row) {
        for (int column = columns.first; column <= columns.last; ++column) {
            // A merged block is painted once, at the first of its cells that this part shows.
            const CCellRange block = m_grid.MergeExtent(row, column);
            if (row == std::max(block.minRow, rows.first) &&
                column == std::max(block.minCol, columns.first)) {
                PaintBlock(block);
            }
        }
    }
    m_painter.restore();
}

QColor GridPainter::BackColour(CCellID cell, bool fixed) const {
    const QColor own = m_grid.Cell(cell.row, cell.col)->GetBackColour();
    if (fixed) {
        return own.isValid() ? own : m_grid.GetFixedBackgroundColour();
    }
    const QColor back = own.isValid() ? own : m_grid.GetBackgroundColour();
    // Mixed, so that the meaning of a cell's own colour is not lost while it is selected.
    constexpr int SelectedPercent = 35;
    return m_grid.IsSelected(cell.row, cell.col)
               ? Mix(back, m_grid.palette().color(QPalette::Highlight), SelectedPercent)
               : back;
}

void GridPainter::PaintBackground(CCellID cell, const QRect& rect, const QColor& back, bool fixed) {
    m_painter.fillRect(rect, back);
    const QColor line = fixed ? m_grid.GetShadowColour() : m_grid.GetGridLineColour();
    m_painter.fillRect(QRect(rect.right(), rect.top(), 1, rect.height()), line);
    m_painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    if (fixed && cell == m_grid.MergeOrigin(cell.row, cell.col)) {
        m_painter.fillRect(QRect(rect.left(), rect.top(), rect.width() - 1, 1), back.lighter(110));
        m_painter.fillRect(QRect(rect.left(), rect.top(), 1, rect.height() - 1), back.lighter(110));
    }
}

void GridPainter::PaintBlock(const CCellRange& block) {
    const CCellID cell{block.minRow, block.minCol};
    const CGridCellBase* source = m_grid.Cell(cell.row, cell.col);
    const QRect rect = m_grid.Layout().BlockRect(block);
    if (source == nullptr || rect.isEmpty()) {
        return;
    }
    const bool fixed = m_grid.Layout().IsFixed(cell);
    PaintBackground(cell, rect, BackColour(cell, fixed), fixed);

    CellLook look;
    look.rect = rect.adjusted(0, 0, -1, -1);
    look.font = source->GetFont().value_or(m_grid.font());
    look.textColour = source->GetTextColour();
    look.enabled = m_grid.isEnabled();
    if (!look.textColour.isValid() || !look.enabled) {
        look.textColour = m_grid.palette().color(fixed ? QPalette::ButtonText : QPalette::Text);
    }
    look.pressedButton = m_grid.PressedButton(cell);
    look.widget = &m_grid;
    source->Paint(m_painter, look);
}

void GridPainter::PaintFocus(const QRect& clip) {
    const CCellID focus = m_grid.GetFocusCell();
    if (!focus.IsValid() || clip.isEmpty()) {
        return;
    }
    m_painter.save();
    m_painter.setClipRect(clip);
    const QPalette::ColorGroup group = m_grid.hasFocus() ? QPalette::Active : QPalette::Inactive;
    QColor colour = m_grid.palette().color(group, QPalette::Highlight);
    if (m_grid.hasFocus()) {
        colour = colour.darker(140);
    }
    m_painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    m_painter.drawRect(m_grid.CellRect(focus.row, focus.col).adjusted(1, 1, -2, -2));
    m_painter.restore();
}

}  // namespace quorvane
