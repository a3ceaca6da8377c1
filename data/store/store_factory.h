// What stands behind the seam: chooses the driver for a database by the content of its file.
#pragma once

#include <QStringList>

#include "data/connection.h"

namespace quorvane {

// A connection for the file named by "Data Source" in the connection string. The first bytes of the file tell
// an SQLite database from an Access one; a file that this platform cannot open, or that is no database, is a
// ProviderError that says so. Opening never creates or changes a file.
std::shared_ptr<Connection> CreateStoreConnection(const CString& connectionString);

// Which driver CreateStoreConnection chooses for a file, and why, as one line; throws as it does.
CString StoreDriver(const CString& path);

// A connection likewise, but the file is copied beside itself before the first statement of a connection that
// writes. Where that fails, GOON is asked once, with the reason, whether to write without a copy.
ConnectionFactory BackedUpStore(std::function<bool(const CString& reason)> goOn);

// What is wrong with the structure of a database file of any kind, one line each; empty when nothing is.
// Throws ProviderError for a file that cannot be read at all.
QStringList CheckStoreFile(const CString& path);

}  // namespace quorvane
