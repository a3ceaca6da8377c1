// A plot of a utilization factor table: the factors over the room ratio, with one curve a heading.
#pragma once

#include <QPen>
#include <QWidget>
#include <functional>
#include <vector>

#include "data/utilization_factor_table.h"

class QPainter;

namespace quorvane {

class FactorPlot : public QWidget {
public:
    // Reads the table whenever it is painted; rowLabel is the name of the room ratio.
    FactorPlot(const UtilizationFactorTable& table, const CString& rowLabel, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Range {
        double least;
        double largest;
    };
    struct Scale;

    void PaintAxes(QPainter& painter, const QRectF& area, const Scale& x, const Scale& y) const;
    void PaintCurves(QPainter& painter, const QRectF& area, const Scale& x, const Scale& y) const;
    void PaintLegend(QPainter& painter, const QRectF& area) const;
    // Tells the headings apart by colour and line, on light and dark.
    QPen PenOf(int heading) const;
    Range FactorRange() const;

    const UtilizationFactorTable& m_table;
    CString m_rowLabel;
};

}  // namespace quorvane
