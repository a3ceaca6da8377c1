#include <objbase.h>
#include <windows.h>

#include <cstdio>

#include "tools/console.h"

namespace quorvane {

std::shared_ptr<void> OpenConsole() {
    ::SetConsoleOutputCP(CP_UTF8);
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    return {nullptr, [](void*) { ::CoUninitialize(); }};
}

void PrintLine(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace quorvane
