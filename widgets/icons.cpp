#include "widgets/icons.h"

#include <QImageReader>
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

}  // namespace

// The toolkit would load its plugins for all other formats to find out the format of a file.
QIcon LoadIcon(IconId id) {
    QImageReader reader(u":/icons/%1.png"_s.arg(NameOf(id)), "png");
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImage(reader.read());
}

}  // namespace quorvane
