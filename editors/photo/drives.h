// The drives from which the user can pick files. Nothing here touches a drive, so a network share that does
// not answer delays nothing.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace quorvane {

// The root folder of each drive, native and with a trailing separator: "C:\", or "/" and the mounted volumes
// with user files. Empty when the system lists none. A drive may turn out to be unreadable later.
QStringList LogicalDrives();

struct Volume {
    QString rootFolder;
    QString fileSystemType;
};

// The volumes mounted into the one tree of folders, from a table in the format of /etc/fstab. Empty where
// drives have letters.
std::vector<Volume> MountedVolumes(const char* table = "/proc/self/mounts");

// The root folders of the volumes that hold user files and no part of the running system, sorted.
QStringList UserFolders(const std::vector<Volume>& volumes);

// The innermost of the drives that holds path, or an empty text. Separators of both kinds are accepted.
QString DriveOfPath(const QString& path, const QStringList& drives);

}  // namespace quorvane
