#include <cstdio>

#include "tools/console.h"

namespace quorvane {

ConsoleSession::ConsoleSession() = default;
ConsoleSession::~ConsoleSession() = default;

void PrintLine(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace quorvane
