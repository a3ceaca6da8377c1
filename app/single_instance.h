// The guard that lets one copy of the program run at a time.
//
// What it holds belongs to the operating system, which drops it when the process ends, however it ends.
#pragma once

#include <QString>
#include <memory>

namespace quorvane {

class SingleInstanceGuard {
public:
    // Takes the marker of that name for the user of this session. Where no marker can be made at all, the
    // copy counts as the only one.
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
