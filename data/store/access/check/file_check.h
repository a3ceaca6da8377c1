// Whether a whole file is sound: what the driver demands before it changes anything (docs/access-files.md,
// "What is checked").
#pragma once

#include <QStringList>

#include "data/store/access/database.h"
#include "data/store/background_check.h"

namespace quorvane::access {

// Reads every structure of the file once: maps, pages, rows, long values and indexes. The rows' values are
// compared with the index entries wherever the key is known. Returns what is wrong, one line each. Throws
// AccessError for a file that can no longer be read, and when the limits are reached.
QStringList CheckFile(Database& database, const CheckLimits& limits = {});

// Throws AccessError when the limits are reached.
void RequireTimeLeft(const CheckLimits& limits);

}  // namespace quorvane::access
