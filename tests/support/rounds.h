// How often a random test repeats its work.
#pragma once

#include <QByteArray>

namespace quorvane {

// The first argument of the program, else LONG where QUORVANE_LONG_TESTS is set, else SHORT. Only SHORT is
// subject to the toolkit's limit of time.
inline int Rounds(int argc, char** argv, int shortRun, int longRun) {
    const int longer = argc > 1 ? QByteArray(argv[1]).toInt() : longRun;
    const bool isLong = argc > 1 || qEnvironmentVariableIsSet("QUORVANE_LONG_TESTS");
    return isLong && qputenv("QTEST_FUNCTION_TIMEOUT", "36000000") ? longer : shortRun;
}

}  // namespace quorvane
