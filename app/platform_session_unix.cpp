#include "app/platform_session.h"

namespace quorvane {

PlatformSession::PlatformSession() = default;
PlatformSession::~PlatformSession() = default;

}  // namespace quorvane
