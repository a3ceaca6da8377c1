#include <windows.h>

#include <QDir>
#include <QFileInfo>

#include "data/store/sqlite_open.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

// Behind "\\?\" the system takes a path as it stands, and up to 32,767 characters of it.
int OpenSqliteFile(const CString& path, sqlite3** database, int flags) {
    const CString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    constexpr qsizetype longestSuffix = 8;  // of the files beside it
    if (native.size() + longestSuffix < MAX_PATH) {
        return sqlite3_open_v2(native.toUtf8().constData(), database, flags, nullptr);
    }
    const CString verbatim =
        native.startsWith(u"\\\\"_s) ? u"\\\\?\\UNC"_s + native.sliced(1) : u"\\\\?\\"_s + native;
    return sqlite3_open_v2(verbatim.toUtf8().constData(), database, flags, "win32-longpath");
}

FailureKind KindOfSystemError(int systemError) {
    switch (systemError) {
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return FailureKind::DiskFull;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return FailureKind::ReadOnly;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return FailureKind::Locked;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_NOT_READY:
        case ERROR_BAD_NETPATH:
        case ERROR_NETNAME_DELETED:
            return FailureKind::FileGone;
        default:
            return FailureKind::Other;
    }
}

bool IsReadError(int /*systemError*/) {
    return false;  // SQLite tells them apart here
}

void ReadAhead(const CString& /*path*/) {}

}  // namespace quorvane
