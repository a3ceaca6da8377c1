#include "grid/layout/grid_layout.h"

namespace quorvane {

void GridLayout::SetViewSize(const QSize& size) {
    rows.SetViewLength(size.height());
    columns.SetViewLength(size.width());
}

bool GridLayout::Holds(const CCellRange& range) const {
    return range.minRow >= 0 && range.minCol >= 0 && range.maxRow < rows.Count() &&
           range.maxCol < columns.Count() && range.minRow <= range.maxRow && range.minCol <= range.maxCol;
}

bool GridLayout::Holds(CCellID cell) const {
    return cell.IsValid() && cell.row < rows.Count() && cell.col < columns.Count();
}

bool GridLayout::IsFixed(CCellID cell) const {
    return cell.row < rows.FixedCount() || cell.col < columns.FixedCount();
}

CCellRange GridLayout::ScrollingCells() const {
    return {rows.FixedCount(), columns.FixedCount(), rows.Count() - 1, columns.Count() - 1};
}

QRect GridLayout::BlockRect(const CCellRange& block) const {
    const GridAxis::Span vertical = rows.ScreenSpan(block.minRow, block.maxRow);
    const GridAxis::Span horizontal = columns.ScreenSpan(block.minCol, block.maxCol);
    return {horizontal.start, vertical.start, horizontal.length, vertical.length};
}

CCellID GridLayout::CellAt(const QPoint& position) const {
    const CCellID cell{rows.LineAtScreen(position.y()), columns.LineAtScreen(position.x())};
    return cell.IsValid() ? cell : CCellID{};
}

QRect GridLayout::ScrollingArea() const {
    return {QPoint(columns.StayingLength(), rows.StayingLength()),
            QPoint(columns.ViewLength() - 1, rows.ViewLength() - 1)};
}

QRect GridLayout::BodyArea() const {
    return {QPoint(columns.FixedLength(), rows.FixedLength()),
            QPoint(columns.ViewLength() - 1, rows.ViewLength() - 1)};
}

QRect GridLayout::AreaOf(CCellID cell) const {
    const QRect scrolling = ScrollingArea();
    const bool rowStays = cell.row < rows.StayingCount();
    const bool columnStays = cell.col < columns.StayingCount();
    return {QPoint(columnStays ? 0 : scrolling.left(), rowStays ? 0 : scrolling.top()),
            QPoint(columnStays ? scrolling.left() - 1 : scrolling.right(),
                   rowStays ? scrolling.top() - 1 : scrolling.bottom())};
}

}  // namespace quorvane
