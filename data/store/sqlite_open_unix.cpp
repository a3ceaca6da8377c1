#include <fcntl.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>

#include "data/store/sqlite_open.h"

namespace quorvane {

// An absolute path cannot be taken for a URI.
int OpenSqliteFile(const CString& path, sqlite3** database, int flags) {
    return sqlite3_open_v2(QFileInfo(path).absoluteFilePath().toUtf8().constData(), database, flags, nullptr);
}

FailureKind KindOfSystemError(int systemError) {
    switch (systemError) {
        case ENOSPC:
        case EDQUOT:
            return FailureKind::DiskFull;
        case EROFS:
        case EACCES:
        case EPERM:
            return FailureKind::ReadOnly;
        case ENOENT:
        case ENODEV:
        case ENXIO:
        case ESTALE:
            return FailureKind::FileGone;
        default:
            return FailureKind::Other;
    }
}

bool IsReadError(int systemError) {
    return systemError == EIO;
}

void ReadAhead(const CString& path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        posix_fadvise(file.handle(), 0, 0, POSIX_FADV_WILLNEED);
    }
}

}  // namespace quorvane
