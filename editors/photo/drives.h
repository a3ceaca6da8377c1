// The drives from which the user can pick files. Nothing here but ReadDriveLook touches a drive, so a network
// share that does not answer delays nothing.
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <vector>

namespace quorvane {

// The root folder of each drive, native and with a trailing separator: "C:\", or "/" and the mounted volumes
// with user files. Empty when the system lists none. A drive may turn out to be unreadable later.
QStringList LogicalDrives();

// Whether two names that differ only in case are one file.
extern const Qt::CaseSensitivity kPathCase;

// How the system shows a drive, where it has a name and a picture for each.
struct DriveLook {
    QString name;  // such as "系统 (C:)"; empty: its root folder
    QImage icon;   // small; null: that of any drive
};

// Thread-safe. It takes as long as the drive does.
DriveLook ReadDriveLook(const QString& rootFolder);

// The root folder "\\server\share\" of a path on a share that has no drive of its own; else empty.
QString NetworkShare(const QString& path);

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
