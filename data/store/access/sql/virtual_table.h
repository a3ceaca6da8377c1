// Shows the tables of an Access file to the SQLite engine, which does the rest: parsing, joining, comparing
// and sorting (docs/access-files.md, "How statements run").
#pragma once

#include <sqlite3.h>

#include "data/store/access/database.h"

namespace quorvane::access {

// Declares to the engine every table of the file that is no system table. The database must outlive it. A
// table that cannot be shown is left out; its name and the reason are returned.
std::map<QString, QString> DeclareTables(sqlite3* engine, const std::shared_ptr<Database>& database);

}  // namespace quorvane::access
