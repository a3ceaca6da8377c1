// While it lives, file permissions hold for this process even when the tests run as root.
#pragma once

#include <QtGlobal>

namespace quorvane {

// Acts as nobody where the process is root of a Unix, and does nothing elsewhere. Files of root that nobody
// should still reach must be open to all.
class UnprivilegedScope {
public:
    UnprivilegedScope();
    ~UnprivilegedScope();
    Q_DISABLE_COPY_MOVE(UnprivilegedScope)

private:
    const bool m_dropped;
};

}  // namespace quorvane
