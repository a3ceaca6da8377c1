// While it lives, file permissions hold for this process even when the tests run as root.
#pragma once

namespace quorvane {

// Acts as nobody where the process is root, and does nothing elsewhere. Files of root that nobody should
// still reach must be open to all.
class UnprivilegedScope {
public:
    UnprivilegedScope();
    ~UnprivilegedScope();
    UnprivilegedScope(const UnprivilegedScope&) = delete;
    UnprivilegedScope& operator=(const UnprivilegedScope&) = delete;

private:
    bool m_dropped = false;
};

}  // namespace quorvane
