// The guard that lets one copy of the program run at a time.
//
// The operating system releases its marker when the process ends, also after a crash.
#pragma once

#include <QString>
#include <memory>

namespace quorvane {

class SingleInstanceGuard {
public:
    // Takes the marker of that name for the current user. When no marker can be made, for instance without a
    // runtime folder, the copy counts as the only one.
    explicit SingleInstanceGuard(const QString& name);
    ~SingleInstanceGuard();
    SingleInstanceGuard(const SingleInstanceGuard&) = delete;
    SingleInstanceGuard& operator=(const SingleInstanceGuard&) = delete;

    // Whether another copy held the marker when this guard was made.
    bool IsAlreadyRunning() const;

private:
    struct Marker;
    std::unique_ptr<Marker> m_marker;
};

}  // namespace quorvane
