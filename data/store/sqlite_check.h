// Whether an SQLite file is sound.
#pragma once

#include <QStringList>

#include "data/store/background_check.h"

namespace quorvane {

// What is wrong with the structure of the file, one line each; empty when nothing is. Throws ProviderError
// when the file cannot be read.
QStringList CheckSqliteFile(const QString& path);

// The same on a read-only connection, up to the first fault, as a check for BackgroundCheck. While it runs
// other programs can read the file and not write it.
void RequireSoundSqliteFile(const CString& path, CheckLimits limits);

}  // namespace quorvane
