#include <sys/stat.h>

#include <QFile>

#include "tests/support/endless_files.h"

namespace quorvane {

QStringList EndlessFiles(const QString& pipe) {
    const bool isMade = mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0;
    return isMade ? QStringList{QStringLiteral("/dev/zero"), pipe} : QStringList();
}

}  // namespace quorvane
