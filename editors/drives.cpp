#include "editors/drives.h"

#include <QDir>
#include <QStorageInfo>
#include <algorithm>

namespace quorvane {
namespace {

#ifdef Q_OS_WIN
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;
#endif

QString WithTrailingSeparator(const QString& folder) {
    return QDir::toNativeSeparators(folder.endsWith(u'/') ? folder : folder + u'/');
}

// Volumes that are mounted into the one tree of folders. Where drives have letters there is none to add.
QStringList MountedFolders() {
    QStringList folders;
#ifdef Q_OS_UNIX
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        const QString type = QString::fromLatin1(volume.fileSystemType());
        const QFileInfo root(volume.rootPath());
        if (IsPersonsVolume(volume.rootPath(), type) && root.isDir() && root.isReadable()) {
            folders += volume.rootPath();
        }
    }
    folders.sort();
#endif
    return folders;
}

}  // namespace

QStringList LogicalDrives() {
    QStringList drives;
    for (const QFileInfo& drive : QDir::drives()) {
        drives += WithTrailingSeparator(drive.absoluteFilePath());
    }
    for (const QString& folder : MountedFolders()) {
        drives += WithTrailingSeparator(folder);
    }
    drives.removeDuplicates();
    return drives;
}

bool IsPersonsVolume(const QString& rootPath, const QString& fileSystemType) {
    static const QStringList systemTypes{
        QStringLiteral("autofs"),   QStringLiteral("cgroup"),      QStringLiteral("cgroup2"),
        QStringLiteral("devtmpfs"), QStringLiteral("fuse.portal"), QStringLiteral("overlay"),
        QStringLiteral("proc"),     QStringLiteral("ramfs"),       QStringLiteral("squashfs"),
        QStringLiteral("sysfs"),    QStringLiteral("tmpfs")};
    static const QStringList systemFolders{
        QStringLiteral("/boot"), QStringLiteral("/dev"), QStringLiteral("/efi"),  QStringLiteral("/etc"),
        QStringLiteral("/proc"), QStringLiteral("/run"), QStringLiteral("/snap"), QStringLiteral("/sys"),
        QStringLiteral("/tmp"),  QStringLiteral("/usr"), QStringLiteral("/var")};
    if (systemTypes.contains(fileSystemType)) {
        return false;
    }
    const auto holdsRoot = [&rootPath](const QString& folder) {
        return rootPath == folder || rootPath.startsWith(folder + u'/');
    };
    return rootPath.startsWith(QStringLiteral("/run/media/")) ||
           std::none_of(systemFolders.begin(), systemFolders.end(), holdsRoot);
}

QString DriveOfPath(const QString& path, const QStringList& drives) {
    const QString folder = WithTrailingSeparator(QDir::fromNativeSeparators(path));
    QString innermost;
    for (const QString& drive : drives) {
        if (drive.size() > innermost.size() && folder.startsWith(drive, kPathCase)) {
            innermost = drive;
        }
    }
    return innermost;
}

}  // namespace quorvane
