#include "data/database_path.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr QChar kSeparator = u'\\';

}  // namespace

CString ApplicationParentFolder(const CString& executablePath) {
    CString folder = executablePath;
    folder.replace(u'/', kSeparator);
    folder.truncate(std::max<qsizetype>(folder.lastIndexOf(kSeparator), 0));

    const qsizetype parentEnd = folder.lastIndexOf(kSeparator);
    if (parentEnd > 0) {
        folder.truncate(parentEnd);
    }
    // Only at the end: the two in front of a network path belong to it.
    while (folder.endsWith(kSeparator)) {
        folder.chop(1);
    }
    return folder;
}

CString DatabasePath(const CString& executablePath) {
    const CString folder = ApplicationParentFolder(executablePath);
    return folder.isEmpty() ? CString() : folder + u"\\Vexal\\灯具数据库.mdb"_s;
}

CString NativePath(const CString& storedPath) {
    return QDir::toNativeSeparators(CString(storedPath).replace(kSeparator, u'/'));
}

}  // namespace quorvane
