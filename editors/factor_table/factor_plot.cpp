#include "editors/factor_table/factor_plot.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>

#include "data/text_format.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QSize kSize(640, 420);
constexpr int kMargin = 12;      // pixels, like all lengths here
constexpr int kTick = 4;         // length of a mark on an axis
constexpr int kLegendLine = 28;  // length of the sample of a curve
constexpr double kPoint = 2.5;   // radius

CString HeadingText(const tagColHeading& heading) {
    return FormatText(u"%d,%d,%d", {heading.Pcc, heading.Pw, heading.Pf});
}

}  // namespace

// An axis from its first to its last mark, `step` apart.
struct FactorPlot::Scale {
    double first;
    double last;
    double step;

    // Marks at 1, 2 or 5 times a power of ten, some five to ten of them.
    static Scale Over(const Range& range) {
        const double span = range.largest > range.least ? range.largest - range.least : 1;
        const double power = std::pow(10, std::floor(std::log10(span / 5)));
        const double parts = span / 5 / power;
        const double step = (parts < 2 ? 1 : parts < 5 ? 2 : 5) * power;
        const double first = std::floor(range.least / step + 1e-9) * step;
        return {first, std::max(first + step, std::ceil(range.largest / step - 1e-9) * step), step};
    }
    int Marks() const { return 1 + static_cast<int>(std::clamp((last - first) / step + 0.5, 0.0, 20.0)); }
    double At(int mark) const { return first + mark * step; }
    CString Text(int mark) const {
        const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 6);
        return CString::number(At(mark), 'f', decimals);
    }
    // The share of the axis's length.
    double Share(double value) const { return (value - first) / (last - first); }
};

FactorPlot::FactorPlot(const UtilizationFactorTable& table, const CString& rowLabel, QWidget* parent)
    : QWidget(parent, Qt::Window), m_table(table), m_rowLabel(rowLabel) {
    setObjectName(u"factorPlot"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(u"利用系数曲线"_s);
    resize(kSize);
}

FactorPlot::Range FactorPlot::FactorRange() const {
    Range range{0, 0.1};
    for (const tagLUMINAIREUTILIZATIONFACTOR& factor : m_table.Factors()) {
        range.least = std::min(range.least, factor.UtilizationFactor);
        range.largest = std::max(range.largest, factor.UtilizationFactor);
    }
    return range;
}

QPen FactorPlot::PenOf(int heading) const {
    constexpr int kHues = 8;
    constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};
    const bool isDark = palette().color(QPalette::Base).lightness() < 128;
    const QColor colour = QColor::fromHsl(heading % kHues * 360 / kHues, 190, isDark ? 170 : 95);
    return {colour, 1.6, kStyles[heading / kHues % 4]};
}

void FactorPlot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Text));
    if (m_table.Factors().empty()) {
        painter.drawText(rect(), Qt::AlignCenter, u"表中没有利用系数。"_s);
        return;
    }
    const Range ratios{m_table.RowValues().front(), m_table.RowValues().back()};
    const Range factors = FactorRange();
    // A file may hold any value.
    constexpr double most = 1e6;
    if (ratios.least < -most || ratios.largest > most || factors.least < -most || factors.largest > most) {
        painter.drawText(rect(), Qt::AlignCenter, u"表中有太大的数值,不能画出曲线。"_s);
        return;
    }
    const QFontMetrics metrics(font());
    const int line = metrics.height();
    int legend = 0;
    for (const tagColHeading& heading : m_table.Headings()) {
        legend = std::max(legend, metrics.horizontalAdvance(HeadingText(heading)));
    }
    legend += kLegendLine + 3 * kMargin;
    const double left = kMargin + kTick + metrics.horizontalAdvance(u"0.000"_s);
    const QRectF area(left, kMargin + 1.5 * line, width() - left - legend,
                      height() - 2 * kMargin - 4.5 * line);
    const Scale x = Scale::Over(ratios);
    const Scale y = Scale::Over(factors);
    PaintAxes(painter, area, x, y);
    PaintCurves(painter, area, x, y);
    PaintLegend(painter, {area.right() + kMargin, area.top(), double(legend), area.height()});
}

void FactorPlot::PaintAxes(QPainter& painter, const QRectF& area, const Scale& x, const Scale& y) const {
    const double line = painter.fontMetrics().height();
    const QColor text = palette().color(QPalette::Text);
    QColor grid = text;
    grid.setAlphaF(0.2F);
    for (int mark = 0; mark < x.Marks(); ++mark) {
        const double at = area.left() + x.Share(x.At(mark)) * area.width();
        painter.setPen(grid);
        painter.drawLine(QLineF(at, area.top(), at, area.bottom()));
        painter.setPen(text);
        painter.drawLine(QLineF(at, area.bottom(), at, area.bottom() + kTick));
        painter.drawText(QRectF(at - 40, area.bottom() + kTick, 80, line), Qt::AlignCenter, x.Text(mark));
    }
    for (int mark = 0; mark < y.Marks(); ++mark) {
        const double at = area.bottom() - y.Share(y.At(mark)) * area.height();
        painter.setPen(grid);
        painter.drawLine(QLineF(area.left(), at, area.right(), at));
        painter.setPen(text);
        painter.drawLine(QLineF(area.left() - kTick, at, area.left(), at));
        painter.drawText(QRectF(0, at - line / 2, area.left() - kTick - 2, line),
                         Qt::AlignRight | Qt::AlignVCenter, y.Text(mark));
    }
    painter.drawLine(area.topLeft(), area.bottomLeft());
    painter.drawLine(area.bottomLeft(), area.bottomRight());
    painter.drawText(QRectF(kMargin, kMargin / 2.0, area.right(), line), Qt::AlignLeft,
                     u"利用系数(无量纲)"_s);
    painter.drawText(QRectF(area.left(), area.bottom() + kTick + 1.3 * line, area.width(), line),
                     Qt::AlignHCenter, m_rowLabel + u"(无量纲)"_s);
}

// The factors are sorted by heading and then by ratio.
void FactorPlot::PaintCurves(QPainter& painter, const QRectF& area, const Scale& x, const Scale& y) const {
    int number = -1;
    std::optional<tagColHeading> heading;
    QPointF before;
    for (const tagLUMINAIREUTILIZATIONFACTOR& factor : m_table.Factors()) {
        const tagColHeading own{factor.Pcc, factor.Pw, factor.Pf};
        const QPointF point(area.left() + x.Share(factor.RCR_RI) * area.width(),
                            area.bottom() - y.Share(factor.UtilizationFactor) * area.height());
        const bool isFirst = heading != own;
        number += isFirst ? 1 : 0;
        const QPen pen = PenOf(number);
        painter.setPen(pen);
        if (!isFirst) {
            painter.drawLine(before, point);
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(pen.color());
        painter.drawEllipse(point, kPoint, kPoint);
        heading = own;
        before = point;
    }
}

void FactorPlot::PaintLegend(QPainter& painter, const QRectF& area) const {
    const double line = painter.fontMetrics().height() * 1.2;
    const auto room = static_cast<std::size_t>(std::max(1.0, area.height() / line));
    const QColor text = palette().color(QPalette::Text);
    double middle = area.top() + line / 2;
    const std::vector<tagColHeading>& headings = m_table.Headings();
    for (std::size_t number = 0; number < std::min(room, headings.size()); ++number) {
        const bool isLast = number + 1 == room && headings.size() > room;
        if (!isLast) {
            painter.setPen(PenOf(static_cast<int>(number)));
            painter.drawLine(QLineF(area.left(), middle, area.left() + kLegendLine, middle));
        }
        painter.setPen(text);
        painter.drawText(
            QRectF(area.left() + kLegendLine + kMargin / 2.0, middle - line / 2, area.width(), line),
            Qt::AlignVCenter, isLast ? u"…"_s : HeadingText(headings[number]));
        middle += line;
    }
}

}  // namespace quorvane
