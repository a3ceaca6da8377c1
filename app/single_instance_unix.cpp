#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cerrno>

#include "app/single_instance.h"

namespace quorvane {

// An advisory lock on a file in the user's runtime folder. The file stays behind; only the lock counts. The
// descriptor is not inherited, so that no child can hold the lock after this process.
struct SingleInstanceGuard::Marker {
    int file = -1;
    bool alreadyRunning = false;
};

SingleInstanceGuard::SingleInstanceGuard(const QString& name) : m_marker(std::make_unique<Marker>()) {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
    const QByteArray path = QFile::encodeName(folder.filePath(name + QStringLiteral(".lock")));
    m_marker->file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    m_marker->alreadyRunning =
        m_marker->file >= 0 && ::flock(m_marker->file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

SingleInstanceGuard::~SingleInstanceGuard() {
    if (m_marker->file >= 0) {
        ::close(m_marker->file);
    }
}

bool SingleInstanceGuard::IsAlreadyRunning() const {
    return m_marker->alreadyRunning;
}

}  // namespace quorvane
