// Waits until the disk holds the names of a folder.
#pragma once

#include "data/records.h"

namespace quorvane {

// Names of files that were put into the folder survive a power cut from then on, where the system can promise
// that.
void SyncFolder(const CString& folder);

}  // namespace quorvane
