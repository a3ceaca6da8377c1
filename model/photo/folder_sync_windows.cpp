#include "model/photo/folder_sync.h"

namespace quorvane {

void SyncFolder(const CString& /*folder*/) {}

}  // namespace quorvane
