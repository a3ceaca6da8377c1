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

void CImageButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
    } else {
        QPushButton::keyPressEvent(event);
    }
}

}  // namespace quorvane
