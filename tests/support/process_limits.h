// Limits on what this process may do, each as long as its object lives. On Windows they do nothing.
#pragma once

#include <QtGlobal>

namespace quorvane {

// File permissions hold even when the tests run as root: acts as nobody then. Files of root that nobody
// should still reach must be open to all.
class UnprivilegedScope {
public:
    UnprivilegedScope();
    ~UnprivilegedScope();
    Q_DISABLE_COPY_MOVE(UnprivilegedScope)

private:
    const bool m_dropped;
};

// The disk is full: no file grows beyond 4,096 bytes.
class FullDiskScope {
public:
    FullDiskScope();
    ~FullDiskScope();
    Q_DISABLE_COPY_MOVE(FullDiskScope)
};

}  // namespace quorvane
