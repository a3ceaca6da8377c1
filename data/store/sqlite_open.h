// What is between SQLite and this platform: the paths of files and the errors of the system.
#pragma once

#include <sqlite3.h>

#include "data/connection.h"

namespace quorvane {

// As sqlite3_open_v2 with these flags. No path is taken for a URI, and its length is limited by the system
// alone.
int OpenSqliteFile(const CString& path, sqlite3** database, int flags);

// The system's own error text, for results of SQLite that only say that the system refused.
FailureKind KindOfSystemError(int systemError);

// Whether it says that the disk could not read. SQLite takes this for a damaged file where the system leaves
// it open which of the two it is.
bool IsReadError(int systemError);

// Tells the system to read the whole file soon, where it can be told.
void ReadAhead(const CString& path);

}  // namespace quorvane
