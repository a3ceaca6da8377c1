// Whether an SQLite file is sound.
#pragma once

#include <QStringList>

namespace quorvane {

// What is wrong with the structure of the file, one line each; empty when nothing is. Throws ProviderError
// when the file cannot be read.
QStringList CheckSqliteFile(const QString& path);

}  // namespace quorvane
