// The console of a program without windows.
#pragma once

#include <QString>

namespace quorvane {

// To be made first of all: what the system needs before Chinese texts are printed and a database is opened.
class ConsoleSession {
public:
    ConsoleSession();
    ~ConsoleSession();
    ConsoleSession(const ConsoleSession&) = delete;
    ConsoleSession& operator=(const ConsoleSession&) = delete;
};

// A line of standard output, in UTF-8.
void PrintLine(const QString& line);

}  // namespace quorvane
