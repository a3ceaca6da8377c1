// The user guide, which is part of the program, in a window of its own.
#pragma once

class QWidget;

namespace quorvane {

// F1 in the window opens the guide, which then stays open beside it.
void AddGuideKey(QWidget& window);

}  // namespace quorvane
