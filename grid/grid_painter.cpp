#include "grid/grid_painter.h"

#include <algorithm>
#include <cmath>

#include "grid/grid_core.h"

namespace quorvane {
namespace {

// A mixture with `percent` parts of a hundred of `over`.
QColor Mix(const QColor& under, const QColor& over, int percent) {
    const auto channel = [=](int a, int b) { return (a * (100 - percent) + b * percent) / 100; };
    return {channel(under.red(), over.red()), channel(under.green(), over.green()),
            channel(under.blue(), over.blue())};
}

// The contrast of two colours as accessibility guidelines define it: 1 (equal) to 21 (black on white).
double Contrast(const QColor& a, const QColor& b) {
    const auto linear = [](float channel) {
        return channel <= 0.04045F ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](const QColor& colour) {
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace

void GridPainter::Paint(const QRect& area) {
    const GridLayout& layout = m_core.Layout();
    const QRect scrolling = layout.ScrollingArea();
    // The last pixels of what stays in place.
    const int stayRight = scrolling.left() - 1;
    const int stayBottom = scrolling.top() - 1;

    m_painter.fillRect(area, m_looks.Background());
    const auto stayingRows = layout.rows.VisibleStaying(area.top(), area.bottom());
    const auto stayingColumns = layout.columns.VisibleStaying(area.left(), area.right());
    const auto rows = layout.rows.VisibleScrolling(area.top(), area.bottom());
    const auto columns = layout.columns.VisibleScrolling(area.left(), area.right());

    const int farRight = std::max(scrolling.right(), stayRight);
    const int farBottom = std::max(scrolling.bottom(), stayBottom);
    PaintPart(rows, columns, area & scrolling);
    PaintPart(rows, stayingColumns, area & QRect(QPoint(0, stayBottom + 1), QPoint(stayRight, farBottom)));
    PaintFocus(area);
    PaintPart(stayingRows, columns, area & QRect(QPoint(stayRight + 1, 0), QPoint(farRight, stayBottom)));
    PaintPart(stayingRows, stayingColumns, area & QRect(QPoint(0, 0), QPoint(stayRight, stayBottom)));
    if (layout.columns.StayingCount() > layout.columns.FixedCount() && !rows.IsEmpty()) {
        const QRect last = layout.BlockRect({rows.last, 0, rows.last, 0});
        m_painter.fillRect(QRect(QPoint(stayRight, 0), QPoint(stayRight, last.bottom())), m_looks.Shadow());
    }
    if (m_looks.dropRange.minRow >= 0) {
        m_painter.setPen(QPen(m_looks.palette.color(QPalette::Highlight), 2, Qt::DashLine));
        m_painter.drawRect(layout.BlockRect(m_looks.dropRange).adjusted(1, 1, -2, -2));
    }
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
            const CCellRange block = m_core.Extent({row, column});
            if (row == std::max(block.minRow, rows.first) &&
                column == std::max(block.minCol, columns.first)) {
                PaintBlock(block);
            }
        }
    }
    m_painter.restore();
}

QColor GridPainter::BackColour(CCellID cell, bool fixed) const {
    const QColor own = m_core.Cell(cell)->GetBackColour();
    if (fixed) {
        return own.isValid() ? own : m_looks.FixedBackground();
    }
    QColor back = own.isValid() ? own : m_looks.Background();
    if (m_looks.highlights != nullptr && *m_looks.highlights && (*m_looks.highlights)(cell)) {
        constexpr QColor kSought(255, 210, 0);
        constexpr int kSoughtPercent = 75;
        back = Mix(back, kSought, kSoughtPercent);
    }
    // Mixed, so that a cell's own colour can still be told while the cell is selected.
    constexpr int kSelectedPercent = 35;
    return m_core.Selection().IsSelected(cell)
               ? Mix(back, m_looks.palette.color(QPalette::Highlight), kSelectedPercent)
               : back;
}

void GridPainter::PaintBackground(CCellID cell, const QRect& rect, const QColor& back, bool fixed) {
    m_painter.fillRect(rect, back);
    const QColor line = fixed ? m_looks.Shadow() : GridLooks::kGridLine;
    m_painter.fillRect(QRect(rect.right(), rect.top(), 1, rect.height()), line);
    m_painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    if (fixed && cell == m_core.Origin(cell)) {
        m_painter.fillRect(QRect(rect.left(), rect.top(), rect.width() - 1, 1), back.lighter(110));
        m_painter.fillRect(QRect(rect.left(), rect.top(), 1, rect.height() - 1), back.lighter(110));
    }
}

QColor GridPainter::TextColour(const CGridCellBase& cell, const QColor& back, bool fixed) const {
    if (m_looks.enabled && cell.GetTextColour().isValid()) {
        return cell.GetTextColour();
    }
    // The palette goes with its own backgrounds, not with every colour that a cell may be given.
    constexpr double kReadable = 4.5;
    const QColor usual = m_looks.palette.color(fixed ? QPalette::ButtonText : QPalette::Text);
    const bool isPalettes = fixed ? !cell.GetBackColour().isValid()
                                  : !m_looks.background.isValid() && back == m_looks.Background();
    if (isPalettes || Contrast(usual, back) >= kReadable) {
        return usual;
    }
    return Contrast(Qt::black, back) >= Contrast(Qt::white, back) ? Qt::black : Qt::white;
}

void GridPainter::PaintBlock(const CCellRange& block) {
    const CCellID cell{block.minRow, block.minCol};
    const CGridCellBase* source = m_core.Cell(cell);
    const QRect rect = m_core.Layout().BlockRect(block);
    if (source == nullptr || rect.isEmpty()) {
        return;
    }
    const bool fixed = m_core.Layout().IsFixed(cell);
    const QColor back = BackColour(cell, fixed);
    PaintBackground(cell, rect, back, fixed);

    CellLook look;
    look.rect = rect.adjusted(0, 0, -1, -1);
    look.font = m_core.FontOf(*source);
    look.textColour = TextColour(*source, back, fixed);
    look.enabled = m_looks.enabled;
    look.pressedButton = m_looks.pressedCell == cell ? m_looks.pressedButton : -1;
    look.widget = m_looks.widget;
    look.images = m_looks.images;
    source->Paint(m_painter, look);
    if (m_looks.marks != nullptr && *m_looks.marks && !fixed) {
        // The marks of a cell whose left part is scrolled away stay in sight.
        const bool scrolls = cell.col >= m_core.Layout().columns.StayingCount();
        const QRect scrolling = m_core.Layout().ScrollingArea();
        const int left = scrolls ? std::max(look.rect.left(), scrolling.left()) : look.rect.left();
        PaintMarks((*m_looks.marks)(cell), QRect(QPoint(left, look.rect.top()), look.rect.bottomRight()),
                   back);
    }
}

void GridPainter::PaintMarks(unsigned marks, const QRect& rect, const QColor& back) {
    if (marks == 0) {
        return;
    }
    constexpr QColor kDark(170, 50, 0);
    constexpr QColor kLight(255, 190, 120);
    constexpr double kSide = 6;
    const QRectF cell(rect);
    m_painter.save();
    m_painter.setClipRect(rect, Qt::IntersectClip);
    m_painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = Contrast(kDark, back) >= Contrast(kLight, back) ? kDark : kLight;
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(colour);
    // Each mark has a corner and a shape of its own.
    if ((marks & CellMark::Changed) != 0) {
        m_painter.drawPolygon(QPolygonF{cell.topRight() - QPointF(kSide, 0), cell.topRight(),
                                        cell.topRight() + QPointF(0, kSide)});
    }
    if ((marks & CellMark::New) != 0) {
        const QPointF corner = cell.bottomLeft();  // the sign stands in the margin beside a text
        m_painter.drawRect(QRectF(corner + QPointF(0, -5), QSizeF(5, 1)));
        m_painter.drawRect(QRectF(corner + QPointF(2, -7), QSizeF(1, 5)));
    }
    if ((marks & CellMark::Unlikely) != 0) {
        constexpr double kWave = 3;
        QPolygonF wave;
        for (int point = 0; point * kWave < cell.width(); ++point) {
            wave << cell.bottomLeft() + QPointF(point * kWave, point % 2 == 0 ? -0.5 : -0.5 - kWave);
        }
        m_painter.setPen(QPen(colour, 1.2));
        m_painter.drawPolyline(wave);
        m_painter.setPen(Qt::NoPen);
    }
    if ((marks & CellMark::DeletedAbove) != 0) {
        m_painter.drawRect(QRectF(cell.topLeft(), QSizeF(cell.width(), 1.5)));
        m_painter.drawPolygon(QPolygonF{cell.topLeft(), cell.topLeft() + QPointF(kSide, 0),
                                        cell.topLeft() + QPointF(0, kSide)});
    }
    m_painter.restore();
}

void GridPainter::PaintFocus(const QRect& area) {
    const CCellID focus = m_core.Focus();
    const QRect clip = area & m_core.Layout().AreaOf(focus);
    if (!focus.IsValid() || clip.isEmpty()) {
        return;
    }
    m_painter.save();
    m_painter.setClipRect(clip);
    const QPalette::ColorGroup group = m_looks.hasFocus ? QPalette::Active : QPalette::Inactive;
    QColor colour = m_looks.palette.color(group, QPalette::Highlight);
    if (m_looks.hasFocus) {
        // Away from the background, which the selection mixes with this colour.
        colour = m_looks.palette.color(QPalette::Base).lightness() < 128 ? colour.lighter(150)
                                                                         : colour.darker(140);
    }
    m_painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    m_painter.drawRect(m_core.CellRect(focus).adjusted(1, 1, -2, -2));
    m_painter.restore();
}

}  // namespace quorvane
