// How often a random test repeats its work.
#pragma once

#include <QByteArray>
#include <utility>

namespace quorvane {

// Takes the first argument from the program's, unless it is an option or missing: then it is null.
inline const char* TakeArgument(int& argc, char**& argv) {
    if (argc < 2 || argv[1][0] == '-') {
        return nullptr;
    }
    --argc;
    std::swap(argv[0], argv[1]);
    return *argv++;
}

// What was given, else LONG where QUORVANE_LONG_TESTS is set, else SHORT. Only SHORT is subject to the
// toolkit's limit of time.
inline int Rounds(const char* given, int shortRun, int longRun) {
    const int longer = given != nullptr ? QByteArray(given).toInt() : longRun;
    const bool isLong = given != nullptr || qEnvironmentVariableIsSet("QUORVANE_LONG_TESTS");
    return isLong && qputenv("QTEST_FUNCTION_TIMEOUT", "36000000") ? longer : shortRun;
}

}  // namespace quorvane
