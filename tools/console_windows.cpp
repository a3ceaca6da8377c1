#include <objbase.h>
#include <windows.h>

#include <cstdio>

#include "tools/console.h"

namespace quorvane {

ConsoleSession::ConsoleSession() {
    ::SetConsoleOutputCP(CP_UTF8);
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

ConsoleSession::~ConsoleSession() {
    ::CoUninitialize();
}

void PrintLine(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace quorvane
