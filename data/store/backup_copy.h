// The way back: copies of a database file beside it, each as the file was before a run first wrote to it.
#pragma once

#include "data/records.h"

namespace quorvane {

// Copies the file to "NAME.yyyy-MM-dd-HHmmss.bak", reads the copy back and compares it, and deletes such
// copies beyond this one and the last two others, even where a clock has gone back. A last copy that is the
// same as the file serves again, so that runs which change nothing push no older copy out. Gives the path of
// the copy. Throws ProviderError with the reason when there is none.
CString MakeBackupCopy(const CString& path);

}  // namespace quorvane
