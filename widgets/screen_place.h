// Where a dialog appears on the screen.
#pragma once

class QWidget;

namespace quorvane {

// To be called when the dialog has its size and before it is shown. Puts it over the middle of its parent's
// window, or of the screen, and moves it so that its title bar and its buttons are on the screen. (The
// toolkit's own placing leaves the title bar out of account where the window manager adds it.)
void PlaceOnScreen(QWidget* dialog);

}  // namespace quorvane
