#include "widgets/image_button.h"

#include <QKeyEvent>

namespace quorvane {

CImageButton::CImageButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setAutoDefault(false);
}

void CImageButton::SetImage(IconId icon, const QString& toolTip) {
    setIcon(LoadIcon(icon));
    setIconSize(QSize(16, 16));
    setToolTip(toolTip);
}

namespace {

QKeyEvent EnterAsSpace(const QKeyEvent& event) {
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return {event.type(), isEnter ? Qt::Key_Space : event.key(), event.modifiers(), event.text(),
            event.isAutoRepeat()};
}

}  // namespace

// Enter acts on release, like Space. A key held down would also answer the question that the button asks.
void CImageButton::keyPressEvent(QKeyEvent* event) {
    QKeyEvent pressed = EnterAsSpace(*event);
    QPushButton::keyPressEvent(&pressed);
    event->setAccepted(pressed.isAccepted());
}

void CImageButton::keyReleaseEvent(QKeyEvent* event) {
    QKeyEvent released = EnterAsSpace(*event);
    QPushButton::keyReleaseEvent(&released);
    event->setAccepted(released.isAccepted());
}

}  // namespace quorvane
