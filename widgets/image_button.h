// CImageButton: a push button with a 16 by 16 picture and a tooltip, which Enter never presses by accident.
#pragma once

#include <QPushButton>

#include "widgets/icons.h"

namespace quorvane {

class CImageButton : public QPushButton {
public:
    CImageButton(const QString& text, QWidget* parent);
    void SetImage(IconId icon, const QString& toolTip);
};

}  // namespace quorvane
