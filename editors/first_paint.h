// Work that need not be done before the user sees the window.
#pragma once

#include <functional>

class QWidget;

namespace quorvane {

// Calls work() once, from the event loop, a moment after the widget has been painted for the first time.
void AfterFirstPaint(QWidget& widget, std::function<void()> work);

}  // namespace quorvane
