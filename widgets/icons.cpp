#include "widgets/icons.h"

#include <QColor>
#include <QGuiApplication>
#include <QImageReader>
#include <QPalette>
#include <QPixmap>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

QString NameOf(IconId id) {
    switch (id) {
        case IconId::Application:
            return u"application"_s;
        case IconId::Paste:
            return u"paste"_s;
        case IconId::Copy:
            return u"copy"_s;
        case IconId::Ok:
            return u"ok"_s;
        case IconId::Delete:
            return u"delete"_s;
        case IconId::Submit:
            return u"submit"_s;
        case IconId::Exit:
            return u"exit"_s;
        case IconId::Next:
            return u"next"_s;
        case IconId::Previous:
            return u"previous"_s;
        case IconId::Clear:
            return u"clear"_s;
    }
    return {};
}

constexpr int kHalf = 128;  // of the lightness of white

// The icons are drawn for light windows. What is dark in them becomes light.
void SuitDarkWindow(QImage& image) {
    image.convertTo(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            QColor colour = image.pixelColor(x, y).toHsl();
            if (colour.lightness() < kHalf) {
                const int lightness = kHalf + (kHalf - colour.lightness()) / 2;
                colour.setHsl(colour.hslHue(), colour.hslSaturation(), lightness, colour.alpha());
                image.setPixelColor(x, y, colour);
            }
        }
    }
}

}  // namespace

// The toolkit would load its plugins for all other formats to find out the format of a file.
QIcon LoadIcon(IconId id) {
    QImageReader reader(u":/icons/%1.png"_s.arg(NameOf(id)), "png");
    reader.setAutoDetectImageFormat(false);
    QImage image = reader.read();
    if (QGuiApplication::palette().color(QPalette::Window).lightness() < kHalf) {
        SuitDarkWindow(image);
    }
    return QPixmap::fromImage(image);
}

}  // namespace quorvane
