#include "widgets/screen_place.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace quorvane {

void PlaceOnScreen(QWidget* dialog) {
    constexpr int titleBar = 40;  // pixels, with the frame: its height is known only later
    const QWidget* parent = dialog->parentWidget();
    const QRect room = (parent == nullptr ? dialog : parent)->screen()->availableGeometry();
    QRect place(QPoint(), dialog->size() + QSize(0, titleBar));
    place.moveCenter(parent == nullptr ? room.center() : parent->window()->frameGeometry().center());
    const int left = std::min(place.left(), room.right() - place.width());
    const int top = std::min(place.top(), room.bottom() - place.height());
    dialog->move(std::max(left, room.left()), std::max(top, room.top()));
}

}  // namespace quorvane
