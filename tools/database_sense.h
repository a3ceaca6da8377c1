// Whether what a lighting database holds makes sense, beyond the structure of its file.
#pragma once

#include <QStringList>

#include "data/connection.h"

namespace quorvane {

// What is wrong with the rows, one line each: fields without a value, references to what is not there, factor
// tables with gaps, with two values for one place or with factors that rise with the room cavity ratio,
// categories that would be taken for mixed light, photos without a file. The folder is that of the database
// file. Throws ProviderError when a table cannot be read.
QStringList CheckSense(Connection& connection, const QString& folder);

}  // namespace quorvane
