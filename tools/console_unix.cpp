#include <cstdio>

#include "tools/console.h"

namespace quorvane {

std::shared_ptr<void> OpenConsole() {
    return {};
}

void PrintLine(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace quorvane
