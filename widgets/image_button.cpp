#include "widgets/image_button.h"

namespace quorvane {

CImageButton::CImageButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setAutoDefault(false);
}

void CImageButton::SetImage(IconId icon, const QString& toolTip) {
    setIcon(LoadIcon(icon));
    setIconSize(QSize(16, 16));
    setToolTip(toolTip);
}

}  // namespace quorvane
