// The drives that a person can pick files from.
#pragma once

#include <QString>
#include <QStringList>

namespace quorvane {

// The root folder of every drive, native and with a trailing separator: "C:\", or "/" and the mounted volumes
// that hold a person's files. Empty when the system names none.
QStringList LogicalDrives();

// Whether a volume mounted at rootPath holds a person's files rather than a part of the running system.
bool IsPersonsVolume(const QString& rootPath, const QString& fileSystemType);

// The innermost of the drives that path lies on, or an empty text. Separators of both kinds are taken.
QString DriveOfPath(const QString& path, const QStringList& drives);

}  // namespace quorvane
