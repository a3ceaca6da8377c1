#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <cerrno>

#include "app/single_instance.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

// An advisory lock on a file in the user's runtime folder. The file stays, only the lock counts. Child
// processes do not inherit the descriptor, so none of them can hold the lock after this process.
//
// QLockFile locks the user out by an empty file, which a process that was killed at the wrong moment leaves
// behind.
struct SingleInstanceGuard::Marker {
    int file = -1;
    bool alreadyRunning = false;
};

SingleInstanceGuard::SingleInstanceGuard(const QString& name) : m_marker(std::make_unique<Marker>()) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        return;  // a relative path would put the file into the current folder
    }
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(name + u".lock"_s));
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
