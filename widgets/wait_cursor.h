// WaitCursor: shows, while it lives, that the program works and cannot be interrupted.
#pragma once

#include <QApplication>

namespace quorvane {

class WaitCursor {
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace quorvane
