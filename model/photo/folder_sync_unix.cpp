#include <fcntl.h>
#include <unistd.h>

#include <QFile>

#include "model/photo/folder_sync.h"

namespace quorvane {

void SyncFolder(const CString& folder) {
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        (void)::fsync(descriptor);  // some file systems know no such call on folders
        ::close(descriptor);
    }
}

}  // namespace quorvane
