// What the system needs from before the first window until after the last one.
#pragma once

#include <memory>

namespace quorvane {

// To be called first of all in the interface thread, before the application object. The session ends when the
// result goes.
[[nodiscard]] std::shared_ptr<void> OpenPlatformSession();

}  // namespace quorvane
