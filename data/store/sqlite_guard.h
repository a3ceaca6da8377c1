// What is refused in a file that nobody vouches for, and how long a statement on it may take.
#pragma once

#include <sqlite3.h>
#include <QDeadlineTimer>
#include <chrono>

#include "data/records.h"

namespace quorvane {

// A statement, the check of the file and each step of opening may take this long.
constexpr std::chrono::seconds kTimeLimit{10};

// Before SQLite opens the file: refuses a rollback journal that names a super-journal, because SQLite would
// delete the file of that name. Throws ProviderError.
void RefuseSuperJournal(const CString& path);

// For every database of the SQLite engine. The schema of a file is data: it runs no triggers, no functions
// with side effects and no views, and it cannot be rewritten. Large values and deep expressions are limited.
// What runs is interrupted when the deadline has passed; the deadline must outlive the database.
void GuardEngine(sqlite3* database, const QDeadlineTimer* deadline);

// Refuses a view or a virtual table in the place of one of the tables, and tables whose columns, constraints,
// defaults or indexes hold expressions: nobody knows how long these take. Throws ProviderError.
void RefuseStrangeTables(sqlite3* database);

}  // namespace quorvane
