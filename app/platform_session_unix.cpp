#include "app/platform_session.h"

namespace quorvane {

std::shared_ptr<void> OpenPlatformSession() {
    return {};
}

}  // namespace quorvane
