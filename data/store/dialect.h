// Turns a statement of the database package's dialect into one that SQLite understands.
#pragma once

#include "data/records.h"

namespace quorvane {

// Only the beginning of a statement is ever rewritten; typed text stands further back and stays as it is.
CString ToSqliteDialect(const CString& statement);

}  // namespace quorvane
