#include "grid/output/grid_printing.h"

#include <QDate>
#include <QFontInfo>
#include <QPainter>
#include <algorithm>

#include "grid/cells/cell_text.h"
#include "grid/grid_core.h"
#include "grid/grid_painter.h"

namespace quorvane {
namespace {

constexpr double kSmallestScale = 0.6;
constexpr int kMarginHeight = 32;  // pixels of the screen, above the grid and below it

// Sizes in points would follow the printer's resolution, the grid's sizes do not.
QFont InPixels(QFont font) {
    font.setPixelSize(QFontInfo(font).pixelSize());
    return font;
}

qint64 Length(const GridAxis& axis, const GridAxis::Lines& lines) {
    return lines.IsEmpty() ? 0 : axis.Start(lines.last + 1) - axis.Start(lines.first);
}

int Offset(const GridAxis& axis, int from, int to) {
    return static_cast<int>(axis.Start(to) - axis.Start(from));
}

}  // namespace

GridPrinting::GridPrinting(const GridCore& core, const GridLooks& looks, const QSizeF& paper,
                           const CString& title)
    : m_core(core), m_looks(looks), m_paper(paper), m_title(title), m_pages(core, Room()) {}

double GridPrinting::Scale() const {
    const GridAxis& columns = m_core.Layout().columns;
    const double width = static_cast<double>(columns.Start(columns.Count())) + 1;
    return std::clamp(m_paper.width() / width, kSmallestScale, 1.0);
}

QSize GridPrinting::Room() const {
    return {static_cast<int>(m_paper.width() / Scale()),
            static_cast<int>((m_paper.height() - 2 * kMarginHeight) / Scale())};
}

void GridPrinting::DrawPage(QPainter& painter, int page) const {
    const GridLayout& layout = m_core.Layout();
    const GridAxis::Lines headingRows{0, layout.rows.FixedCount() - 1};
    const GridAxis::Lines headingColumns{0, layout.columns.FixedCount() - 1};
    const QPoint body(layout.columns.FixedLength(), layout.rows.FixedLength());

    painter.save();
    painter.translate(0, kMarginHeight);
    painter.scale(Scale(), Scale());
    painter.setClipRect(QRect(QPoint(), Room()).adjusted(0, 0, 1, 1));
    DrawPart(painter, headingRows, headingColumns, {});
    DrawPart(painter, headingRows, m_pages.Columns(page), {body.x(), 0});
    DrawPart(painter, m_pages.Rows(page), headingColumns, {0, body.y()});
    DrawPart(painter, m_pages.Rows(page), m_pages.Columns(page), body);
    painter.restore();
    DrawMargins(painter, page);
}

void GridPrinting::DrawMargins(QPainter& painter, int page) const {
    painter.save();
    painter.setFont(InPixels(m_core.Font()));
    const QRectF head(0, 0, m_paper.width(), kMarginHeight);
    const CString date = QDate::currentDate().toString(Qt::ISODate);
    const double room = head.width() - 2 * painter.fontMetrics().horizontalAdvance(date);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignTop,
                     painter.fontMetrics().elidedText(m_title, Qt::ElideRight, static_cast<int>(room)));
    painter.drawText(head, Qt::AlignRight | Qt::AlignTop, date);
    painter.drawText(head.translated(0, m_paper.height() - kMarginHeight), Qt::AlignHCenter | Qt::AlignBottom,
                     QString::asprintf("Page %d of %d", page + 1, PageCount()));
    painter.restore();
}

void GridPrinting::DrawPart(QPainter& painter, const GridAxis::Lines& rows, const GridAxis::Lines& columns,
                            const QPoint& at) const {
    if (rows.IsEmpty() || columns.IsEmpty()) {
        return;
    }
    const GridLayout& layout = m_core.Layout();
    painter.save();
    painter.setClipRect(QRect(at.x(), at.y(), static_cast<int>(Length(layout.columns, columns)) + 1,
                              static_cast<int>(Length(layout.rows, rows)) + 1),
                        Qt::IntersectClip);
    for (int row = rows.first; row <= rows.last; ++row) {
        for (int column = columns.first; column <= columns.last; ++column) {
            const CCellRange block = m_core.Extent({row, column});
            if (row != std::max(block.minRow, rows.first) ||
                column != std::max(block.minCol, columns.first)) {
                continue;
            }
            const QRect rect(at.x() + Offset(layout.columns, columns.first, block.minCol),
                             at.y() + Offset(layout.rows, rows.first, block.minRow),
                             Offset(layout.columns, block.minCol, block.maxCol + 1),
                             Offset(layout.rows, block.minRow, block.maxRow + 1));
            DrawCell(painter, {block.minRow, block.minCol}, rect);
        }
    }
    painter.restore();
}

void GridPrinting::DrawCell(QPainter& painter, CCellID cell, const QRect& rect) const {
    const CGridCellBase* source = m_core.Cell(cell);
    if (source == nullptr || rect.isEmpty()) {
        return;
    }
    const QColor own = source->GetBackColour();
    const bool fixed = m_core.Layout().IsFixed(cell);
    if (own.isValid() || fixed) {
        painter.fillRect(rect, own.isValid() ? own : m_looks.FixedBackground());
    }
    painter.setPen(fixed ? m_looks.Shadow() : GridLooks::kGridLine);
    painter.drawRect(rect);  // its right and lower lines are the next cells' left and upper ones
    painter.setPen(source->GetTextColour().isValid() ? source->GetTextColour() : QColor(Qt::black));
    painter.setFont(InPixels(m_core.FontOf(*source)));
    // The text alone: buttons are of no use on paper.
    const int margin = std::max(1, source->GetMargin());
    DrawCellText(painter, rect.adjusted(margin, 1, -margin, -1), source->GetText(), source->GetFormat());
}

bool IsWiderThanPage(const GridCore& core, int screenDpi, const QPrinter& printer) {
    const GridAxis& columns = core.Layout().columns;
    QPageLayout page = printer.pageLayout();
    page.setOrientation(QPageLayout::Portrait);
    return static_cast<double>(columns.Start(columns.Count())) >
           page.paintRect(QPageLayout::Inch).width() * screenDpi;
}

bool PrintGrid(const GridCore& core, const GridLooks& looks, int screenDpi, QPrinter& printer) {
    const double unit = static_cast<double>(printer.resolution()) / screenDpi;
    const GridPrinting printing(core, looks, printer.pageRect(QPrinter::DevicePixel).size() / unit,
                                printer.docName());
    const bool all = printer.printRange() != QPrinter::PageRange || printer.fromPage() < 1;
    const int first = all ? 0 : printer.fromPage() - 1;
    const int end = all ? printing.PageCount() : std::min(printing.PageCount(), printer.toPage());
    QPainter painter;
    if (first >= end || !painter.begin(&printer)) {
        return false;
    }
    painter.scale(unit, unit);
    for (int page = first; page < end; ++page) {
        if (page > first && !printer.newPage()) {
            return false;
        }
        printing.DrawPage(painter, page);
    }
    return painter.end();
}

}  // namespace quorvane
