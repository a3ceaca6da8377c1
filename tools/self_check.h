// Runs every operation of the program on a copy of a lighting database and compares what comes back with what
// went in.
#pragma once

#include <QStringList>

#include "data/connection.h"

namespace quorvane {

struct SelfCheckReport {
    QStringList lines;  // one for each operation, ready to print
    int failures = 0;
};

// The file at path is only read: it is copied into a folder of its own below that of temporary files, and
// FACTORY opens the copy. Throws ProviderError when it cannot be copied.
SelfCheckReport CheckOperations(const CString& path, const ConnectionFactory& factory);

}  // namespace quorvane
