#include <QFile>

#include "editors/photo/drives.h"

namespace quorvane {

QByteArray MountTable() {
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    return table.open(QIODevice::ReadOnly) ? table.readAll() : QByteArray();
}

}  // namespace quorvane
