#include "tests/support/unprivileged_scope.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace quorvane {

#ifdef Q_OS_UNIX

UnprivilegedScope::UnprivilegedScope() {
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0) {
        m_dropped = seteuid(nobody) == 0;
        Q_ASSERT(m_dropped);
    }
}

UnprivilegedScope::~UnprivilegedScope() {
    if (m_dropped && seteuid(0) != 0) {
        qFatal("cannot become root again");
    }
}

#else

UnprivilegedScope::UnprivilegedScope() = default;
UnprivilegedScope::~UnprivilegedScope() = default;

#endif

}  // namespace quorvane
