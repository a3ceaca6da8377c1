#include <QDir>
#include <QFileInfo>

#include "data/store/sqlite_open.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

// Behind "\\?\" the system takes a path as it stands, and up to 32,767 characters of it.
int OpenSqliteFile(const CString& path, sqlite3** database, int flags) {
    const CString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    const CString verbatim =
        native.startsWith(u"\\\\"_s) ? u"\\\\?\\UNC"_s + native.sliced(1) : u"\\\\?\\"_s + native;
    return sqlite3_open_v2(verbatim.toUtf8().constData(), database, flags, "win32-longpath");
}

void ReadAhead(const CString& /*path*/) {}

}  // namespace quorvane
