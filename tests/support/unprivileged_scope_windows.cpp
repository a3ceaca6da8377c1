#include "tests/support/unprivileged_scope.h"

namespace quorvane {

UnprivilegedScope::UnprivilegedScope() : m_dropped(false) {}
UnprivilegedScope::~UnprivilegedScope() = default;

}  // namespace quorvane
