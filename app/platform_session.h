// PlatformSession: what the system needs from before the first window until after the last one.
#pragma once

namespace quorvane {

class PlatformSession {
public:
    // To be made first of all in the interface thread, before the application object.
    PlatformSession();
    ~PlatformSession();
    PlatformSession(const PlatformSession&) = delete;
    PlatformSession& operator=(const PlatformSession&) = delete;
};

}  // namespace quorvane
