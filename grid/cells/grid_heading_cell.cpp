#include "grid/cells/grid_heading_cell.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>

namespace quorvane {
namespace {

constexpr int kArrowWidth = 9;
constexpr int kFunnelWidth = 11;
constexpr int kBesideArrow = 4;  // still part of the button, but the text may stand there

QPolygonF Arrow(const QPointF& centre, bool up) {
    constexpr double kHalf = 4;
    const double tip = up ? -kHalf / 2 : kHalf / 2;
    return {QPointF(centre.x() - kHalf, centre.y() - tip), QPointF(centre.x() + kHalf, centre.y() - tip),
            QPointF(centre.x(), centre.y() + tip)};
}

QPolygonF Funnel(const QPointF& centre) {
    const QPolygonF shape{{{-4, -4}, {4, -4}, {1, 0}, {1, 4}, {-1, 3}, {-1, 0}}};
    return shape.translated(centre);
}

}  // namespace

void CGridHeadingCell::SetOrder(HeadingOrder order, bool isFiltered) {
    m_order = order;
    m_isFiltered = isFiltered;
}

QRect CGridHeadingCell::BtnRect(const QRect& cell) const {
    const int width = std::min(cell.width(), SignsWidth() + kBesideArrow);
    return {cell.right() + 1 - width, cell.top(), width, cell.height()};
}

int CGridHeadingCell::SignsWidth() const {
    return kArrowWidth + (m_isFiltered ? kFunnelWidth : 0);
}

// Without margins: the columns are no wider than their headings.
QRect CGridHeadingCell::FreeRect(const QRect& cell, const QFont& /*font*/) const {
    return cell.adjusted(-GetMargin(), 0, GetMargin() - SignsWidth(), 0);
}

int CGridHeadingCell::BtnAt(const QRect& cell, const QFont& /*font*/, const QPoint& position) const {
    return BtnRect(cell).contains(position) ? 0 : -1;
}

void CGridHeadingCell::Paint(QPainter& painter, const CellLook& look) const {
    CGridCell::Paint(painter, look);
    const QRectF button = BtnRect(look.rect);
    QColor colour = look.textColour;
    painter.save();
    painter.setClipRect(look.rect, Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    if (m_isFiltered) {
        painter.drawPolygon(Funnel({button.left() + kBesideArrow + kFunnelWidth / 2.0, button.center().y()}));
    }
    const QPointF place(button.right() - kArrowWidth / 2.0, button.center().y());
    if (m_order == HeadingOrder::None) {
        colour.setAlphaF(0.45F);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(colour);
    }
    painter.drawPolygon(Arrow(place, m_order == HeadingOrder::Ascending));
    painter.restore();
}

}  // namespace quorvane
