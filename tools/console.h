// The console of a program without windows.
#pragma once

#include <QString>
#include <memory>

namespace quorvane {

// To be called first of all: sets up what the system needs before Chinese texts are printed and a database is
// opened. It stays until the result goes.
[[nodiscard]] std::shared_ptr<void> OpenConsole();

// A line of standard output, in UTF-8.
void PrintLine(const QString& line);

}  // namespace quorvane
