// CImageButton: a push button with a 16 by 16 icon and a tooltip. Enter presses it only while it has the
// focus.
#pragma once

#include <QPushButton>

#include "widgets/icons.h"

namespace quorvane {

class CImageButton : public QPushButton {
public:
    CImageButton(const QString& text, QWidget* parent);
    void SetImage(IconId icon, const QString& toolTip);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
};

}  // namespace quorvane
