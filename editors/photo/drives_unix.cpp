#include <mntent.h>

#include <QFile>
#include <memory>

#include "editors/photo/drives.h"

namespace quorvane {

const Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;

DriveLook ReadDriveLook(const QString& /*rootFolder*/) {
    return {};
}

QString NetworkShare(const QString& /*path*/) {
    return {};  // a share is part of the one tree of folders
}

std::vector<Volume> MountedVolumes(const char* table) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(setmntent(table, "r"), endmntent);
    std::vector<Volume> volumes;
    while (const mntent* entry = file ? getmntent(file.get()) : nullptr) {
        volumes.push_back({QFile::decodeName(entry->mnt_dir), QString::fromLatin1(entry->mnt_type)});
    }
    return volumes;
}

}  // namespace quorvane
