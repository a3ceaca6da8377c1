#include "tests/support/process_limits.h"

namespace quorvane {

UnprivilegedScope::UnprivilegedScope() : m_dropped(false) {}
UnprivilegedScope::~UnprivilegedScope() = default;
FullDiskScope::FullDiskScope() = default;
FullDiskScope::~FullDiskScope() = default;

}  // namespace quorvane
