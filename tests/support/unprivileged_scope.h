// While it lives, file permissions hold for this process even when the tests run as root.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace quorvane {

// Acts as nobody where the process is root, and does nothing elsewhere. Files of root that nobody should
// still reach must be open to all.
class UnprivilegedScope {
public:
#ifdef Q_OS_UNIX
    UnprivilegedScope() : m_dropped(geteuid() == 0 && seteuid(65534) == 0) {}
    ~UnprivilegedScope() {
        if (m_dropped && seteuid(0) != 0) {
            qFatal("cannot become root again");
        }
    }
    Q_DISABLE_COPY_MOVE(UnprivilegedScope)

private:
    const bool m_dropped;
#else
    ~UnprivilegedScope() {}
#endif
};

}  // namespace quorvane
