// How an SQLite file is written: one statement alone, and the many statements of a submit.
#pragma once

#include <sqlite3.h>

namespace quorvane {

// Before a new connection reads: takes the lock under which the log that a killed process left can be read
// without shared memory. Does nothing when another program is using the file.
void LockSqliteFile(sqlite3* database);

// Gives that lock back and sets up the connection so that each statement survives a power cut once it has
// returned. A log that was left goes into the database, which is one file again.
void PrepareForWriting(sqlite3* database);

// Until EndSqliteSubmit each statement still survives a kill of the process, but not yet a power cut. A power
// cut leaves the statements that came first, and a whole database. Without the lock that this needs, because
// another program is using the file, nothing changes.
void BeginSqliteSubmit(sqlite3* database);

// When it returns, all statements of the submit survive a power cut, and the database is one file again
// unless another program is using it. Throws ProviderError when the disk reports an error.
void EndSqliteSubmit(sqlite3* database);

}  // namespace quorvane
