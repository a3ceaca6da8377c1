#include "app/quiet_moment.h"

#include <QApplication>

#include "grid/grid_ctrl.h"

namespace quorvane {

QWidget* WindowForMessage(QWidget& mainWindow) {
    QWidget* front = QApplication::activeModalWidget();
    if (front == nullptr) {
        front = &mainWindow;
    }
    const QWidget* focus = front->focusWidget();
    const bool isTyping = focus != nullptr && focus->inputMethodQuery(Qt::ImSurroundingText).isValid();
    const bool isChoosing =
        QGuiApplication::mouseButtons() != Qt::NoButton || QApplication::activePopupWidget() != nullptr;
    const bool isForEdits = front == &mainWindow || front->findChild<CGridCtrl*>() != nullptr;
    return isForEdits && !isTyping && !isChoosing ? front : nullptr;
}

}  // namespace quorvane
