#include "widgets/icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace quorvane {
namespace {

// Every picture is drawn in a square of 16 by 16 units.

QPen Stroke(const QColor& colour, double width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

// A pendant luminaire and the light that it throws.
void DrawApplication(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 214, 92, 170));
    painter.drawPolygon(QPolygonF({{4.5, 9}, {11.5, 9}, {15, 15.5}, {1, 15.5}}));
    painter.setBrush(QColor(255, 244, 200));
    painter.drawEllipse(QRectF(5.5, 7, 5, 3.6));
    painter.setPen(Stroke(QColor(40, 60, 90), 1.2));
    painter.drawLine(QPointF(8, 0.5), QPointF(8, 3.5));
    painter.setBrush(QColor(52, 92, 150));
    painter.drawPolygon(QPolygonF({{6, 3.5}, {10, 3.5}, {13.5, 9}, {2.5, 9}}));
}

// A tick.
void DrawSubmit(QPainter& painter) {
    painter.setPen(Stroke(QColor(30, 140, 60), 2.4));
    painter.drawPolyline(QPolygonF({{2.5, 8.5}, {6.3, 12.3}, {13.5, 4}}));
}

// A waste bin.
void DrawDelete(QPainter& painter) {
    painter.setPen(Stroke(QColor(170, 50, 40), 1.3));
    painter.drawLine(QPointF(2.5, 4), QPointF(13.5, 4));
    painter.drawLine(QPointF(6.3, 2), QPointF(9.7, 2));
    painter.drawPolyline(QPolygonF({{4, 4.3}, {4.8, 14}, {11.2, 14}, {12, 4.3}}));
    painter.drawLine(QPointF(6.7, 6.8), QPointF(6.9, 11.5));
    painter.drawLine(QPointF(9.3, 6.8), QPointF(9.1, 11.5));
}

// A door and an arrow leaving it.
void DrawExit(QPainter& painter) {
    painter.setPen(Stroke(QColor(70, 70, 80), 1.4));
    painter.drawPolyline(QPolygonF({{9, 2.5}, {2.5, 2.5}, {2.5, 13.5}, {9, 13.5}}));
    painter.setPen(Stroke(QColor(40, 100, 180), 1.8));
    painter.drawLine(QPointF(6.5, 8), QPointF(13.3, 8));
    painter.drawPolyline(QPolygonF({{10.3, 5}, {13.5, 8}, {10.3, 11}}));
}

// A tick in a disc.
void DrawOk(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(30, 140, 60));
    painter.drawEllipse(QRectF(1, 1, 14, 14));
    painter.setPen(Stroke(Qt::white, 2));
    painter.drawPolyline(QPolygonF({{4.5, 8.4}, {7.1, 11}, {11.6, 5.2}}));
}

// A picture's frame with an arrow beside it, which points right.
void DrawNext(QPainter& painter) {
    painter.setPen(Stroke(QColor(70, 70, 80), 1.2));
    painter.setBrush(QColor(214, 230, 248));
    painter.drawRect(QRectF(1.5, 3.5, 6, 9));
    painter.setPen(Stroke(QColor(40, 100, 180), 1.8));
    painter.drawLine(QPointF(9.5, 8), QPointF(14.3, 8));
    painter.drawPolyline(QPolygonF({{11.6, 5.2}, {14.5, 8}, {11.6, 10.8}}));
}

// The same, seen in a mirror.
void DrawPrevious(QPainter& painter) {
    painter.translate(16, 0);
    painter.scale(-1, 1);
    DrawNext(painter);
}

// A picture that is crossed out.
void DrawClear(QPainter& painter) {
    painter.setPen(Stroke(QColor(70, 70, 80), 1.2));
    painter.setBrush(QColor(214, 230, 248));
    painter.drawRect(QRectF(1.5, 2.5, 11, 9));
    painter.setPen(Stroke(QColor(190, 50, 40), 1.9));
    painter.drawLine(QPointF(8.3, 8.3), QPointF(14.3, 14.3));
    painter.drawLine(QPointF(14.3, 8.3), QPointF(8.3, 14.3));
}

// Two sheets, one over the other.
void DrawCopy(QPainter& painter) {
    painter.setPen(Stroke(QColor(70, 70, 80), 1.2));
    painter.setBrush(QColor(235, 240, 248));
    painter.drawRect(QRectF(2, 2, 8, 9.5));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(6, 4.5, 8, 9.5));
    painter.drawLine(QPointF(8, 7.5), QPointF(12, 7.5));
    painter.drawLine(QPointF(8, 10.5), QPointF(12, 10.5));
}

// A clipboard with a sheet on it.
void DrawPaste(QPainter& painter) {
    painter.setPen(Stroke(QColor(110, 75, 30), 1.2));
    painter.setBrush(QColor(214, 168, 100));
    painter.drawRect(QRectF(2.5, 2.5, 9.5, 12));
    painter.setBrush(QColor(150, 150, 160));
    painter.drawRect(QRectF(5, 1.2, 4.5, 2.6));
    painter.setPen(Stroke(QColor(70, 70, 80), 1.2));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(6.5, 6.5, 7.5, 8));
}

void Draw(IconId id, QPainter& painter) {
    switch (id) {
        case IconId::Copy:
            return DrawCopy(painter);
        case IconId::Paste:
            return DrawPaste(painter);
        case IconId::Application:
            return DrawApplication(painter);
        case IconId::Delete:
            return DrawDelete(painter);
        case IconId::Submit:
            return DrawSubmit(painter);
        case IconId::Exit:
            return DrawExit(painter);
        case IconId::Ok:
            return DrawOk(painter);
        case IconId::Next:
            return DrawNext(painter);
        case IconId::Previous:
            return DrawPrevious(painter);
        case IconId::Clear:
            return DrawClear(painter);
    }
}

}  // namespace

QIcon LoadIcon(IconId id) {
    QIcon icon;
    for (const int size : {16, 24, 32, 48}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        Draw(id, painter);
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace quorvane
