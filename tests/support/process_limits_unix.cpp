#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/process_limits.h"

namespace quorvane {

UnprivilegedScope::UnprivilegedScope() : m_dropped(geteuid() == 0 && seteuid(65534) == 0) {}

UnprivilegedScope::~UnprivilegedScope() {
    if (m_dropped && seteuid(0) != 0) {
        qFatal("cannot become root again");
    }
}

FullDiskScope::FullDiskScope() {
    const rlimit limit{4096, RLIM_INFINITY};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
}

FullDiskScope::~FullDiskScope() {
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &none);
}

}  // namespace quorvane
