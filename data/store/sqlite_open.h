// Opens SQLite files by the path that this platform gives them.
#pragma once

#include <sqlite3.h>

#include "data/records.h"

namespace quorvane {

// As sqlite3_open_v2 with these flags. No path is taken for a URI, and its length is limited by the system
// alone.
int OpenSqliteFile(const CString& path, sqlite3** database, int flags);

// Tells the system to read the whole file soon, where it can be told.
void ReadAhead(const CString& path);

}  // namespace quorvane
