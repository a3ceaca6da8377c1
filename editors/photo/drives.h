// The drives that a person can pick files from. Nothing here touches a drive, so a share that has gone holds
// nothing up.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quorvane {

// The root folder of every drive, native and with a trailing separator: "C:\", or "/" and the mounted volumes
// that hold a person's files. Empty when the system names none. Whether one can be read shows when it is.
QStringList LogicalDrives();

// What this system says about the volumes mounted into its one tree of folders, in the form that
// PersonsFolders reads; empty where drives have letters.
QByteArray MountTable();

// The root folders of the volumes in such a table that hold a person's files rather than a part of the
// running system, sorted.
QStringList PersonsFolders(const QByteArray& mountTable);

// The innermost of the drives that path lies on, or an empty text. Separators of both kinds are taken.
QString DriveOfPath(const QString& path, const QStringList& drives);

}  // namespace quorvane
