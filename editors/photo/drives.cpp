#include "editors/photo/drives.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

QString WithTrailingSeparator(const QString& folder) {
    return QDir::toNativeSeparators(folder.endsWith(u'/') ? folder : folder + u'/');
}

bool HoldsUserFiles(const QString& rootPath, const QString& fileSystemType) {
    static const QStringList systemTypes{u"autofs"_s,      u"cgroup"_s,  u"cgroup2"_s, u"devtmpfs"_s,
                                         u"fuse.portal"_s, u"overlay"_s, u"proc"_s,    u"ramfs"_s,
                                         u"squashfs"_s,    u"sysfs"_s,   u"tmpfs"_s};
    static const QStringList systemFolders{u"/boot"_s, u"/dev"_s, u"/efi"_s, u"/etc"_s, u"/proc"_s, u"/run"_s,
                                           u"/snap"_s, u"/sys"_s, u"/tmp"_s, u"/usr"_s, u"/var"_s};
    // Network shares count wherever the desktop has mounted them.
    static const QStringList shareTypes{u"9p"_s,         u"cifs"_s, u"davfs"_s, u"fuse.gvfsd-fuse"_s,
                                        u"fuse.sshfs"_s, u"nfs"_s,  u"nfs4"_s,  u"smb3"_s};
    if (systemTypes.contains(fileSystemType)) {
        return false;
    }
    if (shareTypes.contains(fileSystemType)) {
        return true;
    }
    const auto holdsRoot = [&rootPath](const QString& folder) {
        return rootPath == folder || rootPath.startsWith(folder + u'/');
    };
    return rootPath.startsWith(u"/run/media/"_s) ||
           std::none_of(systemFolders.begin(), systemFolders.end(), holdsRoot);
}

}  // namespace

QStringList LogicalDrives() {
    QStringList drives;
    for (const QFileInfo& drive : QDir::drives()) {
        drives += WithTrailingSeparator(drive.absoluteFilePath());
    }
    for (const QString& folder : UserFolders(MountedVolumes())) {
        drives += WithTrailingSeparator(folder);
    }
    drives.removeDuplicates();
    return drives;
}

QStringList UserFolders(const std::vector<Volume>& volumes) {
    QStringList folders;
    for (const Volume& volume : volumes) {
        if (HoldsUserFiles(volume.rootFolder, volume.fileSystemType)) {
            folders += volume.rootFolder;
        }
    }
    folders.sort();
    return folders;
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
