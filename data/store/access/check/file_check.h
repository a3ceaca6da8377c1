// Whether a whole file is sound: what the driver demands before it changes anything (docs/access-files.md,
// "What is checked at opening").
#pragma once

#include <QStringList>

#include "data/store/access/database.h"
#include "data/store/background_check.h"

namespace quorvane::access {

// Reads every structure of the file once: maps, pages, rows, long values and indexes. The rows' values are
// compared with the index entries wherever the key is known. Returns what is wrong, one line each, and that
// the check was given up when the limits are reached. Throws AccessError only for a file that can no longer
// be read.
QStringList CheckFile(Database& database, const CheckLimits& limits = {});

}  // namespace quorvane::access
