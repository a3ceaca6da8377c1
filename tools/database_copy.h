// Copies the rows of one lighting database into another, of whatever kind.
#pragma once

#include "data/connection.h"

namespace quorvane {

// An open connection to a database file. Throws ProviderError.
std::shared_ptr<Connection> OpenDatabase(const QString& file);

// Copies the rows of all five tables, IDs kept, and compares both databases afterwards. Returns the number of
// rows. Throws SampleError when the target holds rows already, when a row does not fit, and when the two
// differ in the end; the target then holds the rows copied so far.
int CopyDatabase(Connection& from, Connection& to);

}  // namespace quorvane
