#include <unistd.h>

#include "tests/support/unprivileged_scope.h"

namespace quorvane {

UnprivilegedScope::UnprivilegedScope() : m_dropped(geteuid() == 0 && seteuid(65534) == 0) {}

UnprivilegedScope::~UnprivilegedScope() {
    if (m_dropped && seteuid(0) != 0) {
        qFatal("cannot become root again");
    }
}

}  // namespace quorvane
