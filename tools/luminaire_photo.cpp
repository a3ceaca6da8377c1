#include "tools/luminaire_photo.h"

#include <QPainter>
#include <QPainterPath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

const QColor kOutline(70, 76, 84);
const QColor kLightMetal(236, 238, 241);
const QColor kDarkMetal(168, 174, 182);
const QColor kGlow(255, 250, 222);

// Sheet metal lit from above.
QLinearGradient Metal(const QRectF& area) {
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, kLightMetal);
    gradient.setColorAt(1, kDarkMetal);
    return gradient;
}

// A tube or a glass that glows along its middle.
QLinearGradient Glow(const QRectF& area) {
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, QColor(240, 232, 196));
    gradient.setColorAt(0.5, Qt::white);
    gradient.setColorAt(1, QColor(240, 232, 196));
    return gradient;
}

void DrawBox(QPainter& painter, const QRectF& area, qreal radius = 0) {
    painter.setBrush(Metal(area));
    painter.drawRoundedRect(area, radius, radius);
}

void DrawTube(QPainter& painter, const QRectF& area) {
    painter.setBrush(Glow(area));
    painter.drawRoundedRect(area, area.height() / 2, area.height() / 2);
    painter.setBrush(kDarkMetal);
    painter.drawRect(QRectF(area.left(), area.top(), 12, area.height()));
    painter.drawRect(QRectF(area.right() - 12, area.top(), 12, area.height()));
}

// Seen from below: three tubes, each in its trough, under cross louvres.
void DrawGrillePanel(QPainter& painter) {
    DrawBox(painter, QRectF(40, 45, 320, 210), 4);
    for (int trough = 0; trough < 3; ++trough) {
        const QRectF area(54, 57 + trough * 63, 292, 60);
        painter.setBrush(QColor(250, 250, 246));
        painter.drawRect(area);
        DrawTube(painter, QRectF(area.left() + 4, area.center().y() - 8, area.width() - 8, 16));
        painter.setBrush(Metal(area));
        for (int louvre = 1; louvre < 10; ++louvre) {
            painter.drawRect(
                QRectF(area.left() + louvre * area.width() / 10 - 2, area.top(), 4, area.height()));
        }
    }
}

// Seen from the side: a channel on two rods, its reflector and the tube below.
void DrawBatten(QPainter& painter) {
    DrawBox(painter, QRectF(110, 30, 4, 85));
    DrawBox(painter, QRectF(286, 30, 4, 85));
    DrawBox(painter, QRectF(45, 115, 310, 28), 3);
    painter.setBrush(Metal(QRectF(25, 143, 350, 36)));
    painter.drawPolygon(QPolygonF({{60, 143}, {340, 143}, {375, 179}, {25, 179}}));
    DrawTube(painter, QRectF(50, 187, 300, 18));
    painter.setBrush(kDarkMetal);
    painter.drawRect(QRectF(50, 179, 12, 26));
    painter.drawRect(QRectF(338, 179, 12, 26));
}

// Seen from the side: a sealed housing, clips around its rim, two tubes behind a clear cover.
void DrawSealedFitting(QPainter& painter) {
    DrawBox(painter, QRectF(30, 105, 340, 50), 20);
    DrawBox(painter, QRectF(8, 122, 24, 16), 4);
    const QRectF cover(40, 150, 320, 62);
    painter.setBrush(QColor(226, 238, 244));
    painter.drawRoundedRect(cover, 24, 24);
    DrawTube(painter, QRectF(58, 171, 284, 12));
    DrawTube(painter, QRectF(58, 190, 284, 12));
    DrawBox(painter, QRectF(28, 144, 344, 12), 5);
    for (int clip = 0; clip < 5; ++clip) {
        DrawBox(painter, QRectF(62 + clip * 66, 136, 12, 30), 3);
    }
}

// Seen from below: a trim ring, the mirror reflector and the lamp.
void DrawDownlight(QPainter& painter) {
    const QPointF centre(200, 150);
    DrawBox(painter, QRectF(75, 25, 250, 250), 125);
    QRadialGradient mirror(centre, 104);
    mirror.setColorAt(0, Qt::white);
    mirror.setColorAt(0.55, QColor(214, 218, 224));
    mirror.setColorAt(0.8, QColor(246, 246, 248));
    mirror.setColorAt(1, QColor(150, 156, 164));
    painter.setBrush(mirror);
    painter.drawEllipse(centre, 104, 104);
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, 78, 78);
    painter.setBrush(kGlow);
    painter.drawEllipse(centre, 38, 38);
    painter.drawEllipse(centre, 24, 24);
}

// Seen from the side: hook, ballast box, bell and the bright opening.
void DrawHighBay(QPainter& painter) {
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(200, 24), 11, 11);
    DrawBox(painter, QRectF(196, 35, 8, 14));
    DrawBox(painter, QRectF(160, 49, 80, 72), 6);
    DrawBox(painter, QRectF(180, 121, 40, 16));
    QPainterPath bell(QPointF(170, 137));
    bell.lineTo(230, 137);
    bell.cubicTo(262, 160, 296, 205, 306, 250);
    bell.lineTo(94, 250);
    bell.cubicTo(104, 205, 138, 160, 170, 137);
    QLinearGradient spun(94, 0, 306, 0);
    spun.setColorAt(0, kDarkMetal);
    spun.setColorAt(0.4, kLightMetal);
    spun.setColorAt(1, QColor(140, 146, 154));
    painter.setBrush(spun);
    painter.drawPath(bell);
    painter.setBrush(kGlow);
    painter.drawEllipse(QPointF(200, 250), 106, 20);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(200, 250), 40, 8);
}

// Seen from the front: a framed glass before a linear lamp, in a bracket that stands on a foot.
void DrawFloodlight(QPainter& painter) {
    DrawBox(painter, QRectF(140, 262, 120, 10), 2);
    DrawBox(painter, QRectF(60, 246, 280, 16), 3);
    DrawBox(painter, QRectF(60, 120, 12, 134), 3);
    DrawBox(painter, QRectF(328, 120, 12, 134), 3);
    DrawBox(painter, QRectF(84, 40, 232, 186), 8);
    const QRectF glass(104, 60, 192, 146);
    QRadialGradient light(glass.center(), 110);
    light.setColorAt(0, Qt::white);
    light.setColorAt(1, QColor(236, 226, 186));
    painter.setBrush(light);
    painter.drawRect(glass);
    DrawTube(painter, QRectF(136, 122, 128, 22));
    painter.setBrush(kDarkMetal);
    painter.drawEllipse(QPointF(78, 133), 12, 12);
    painter.drawEllipse(QPointF(322, 133), 12, 12);
}

// Seen from the side: a post, its arm, and the head with the glass below.
void DrawStreetlight(QPainter& painter) {
    DrawBox(painter, QRectF(70, 110, 14, 190));
    QPainterPath arm(QPointF(77, 112));
    arm.cubicTo(80, 72, 120, 62, 190, 60);
    painter.strokePath(arm, QPen(kOutline, 12));
    painter.strokePath(arm, QPen(kDarkMetal, 9));
    painter.setBrush(kGlow);
    painter.drawChord(QRectF(232, 44, 118, 84), 180 * 16, 180 * 16);
    QPainterPath head(QPointF(180, 50));
    head.cubicTo(230, 26, 330, 26, 372, 78);
    head.lineTo(368, 88);
    head.lineTo(190, 88);
    head.closeSubpath();
    painter.setBrush(Metal(head.boundingRect()));
    painter.drawPath(head);
}

using Draw = void (*)(QPainter&);

const std::pair<QString, Draw> kDrawings[] = {
    {u"格栅灯盘"_s, DrawGrillePanel}, {u"支架灯"_s, DrawBatten},  {u"三防灯"_s, DrawSealedFitting},
    {u"筒灯"_s, DrawDownlight},       {u"工矿灯"_s, DrawHighBay}, {u"投光灯"_s, DrawFloodlight},
    {u"路灯"_s, DrawStreetlight},
};

}  // namespace

QStringList LuminaireDrawings() {
    QStringList names;
    for (const auto& [name, draw] : kDrawings) {
        names += name;
    }
    return names;
}

QImage DrawLuminaire(const QString& drawing) {
    for (const auto& [name, draw] : kDrawings) {
        if (name == drawing) {
            QImage image(400, 300, QImage::Format_RGB32);
            image.fill(QColor(206, 216, 226));
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(kOutline, 1.5));
            draw(painter);
            return image;
        }
    }
    return {};
}

}  // namespace quorvane
