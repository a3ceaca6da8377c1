// The part of a connection string that a driver needs.
#pragma once

#include "data/records.h"

namespace quorvane {

// The path after "Data Source =", in the form in which it stands there. It is the string's last entry and
// runs to the closing semicolon, so that a folder name may hold a semicolon itself. Empty when there is none.
CString DataSource(const CString& connectionString);

}  // namespace quorvane
