// Checks an SQLite file as a whole, indexes included, in a thread beside the one that uses the file.
#pragma once

#include <chrono>
#include <memory>

#include "data/connection.h"

namespace quorvane {

class SqliteBackgroundCheck {
public:
    // Starts the check on a read-only connection of its own. It takes no longer than kTimeLimit; for this
    // time other programs can read the file and not write it.
    explicit SqliteBackgroundCheck(const CString& path);
    // Stops the check. A thread that hangs in a drive that does not answer is left behind; it owns what it
    // uses.
    ~SqliteBackgroundCheck();
    SqliteBackgroundCheck(const SqliteBackgroundCheck&) = delete;
    SqliteBackgroundCheck& operator=(const SqliteBackgroundCheck&) = delete;

    // Waits for the end of the check. False when it has not ended by then.
    bool Wait(std::chrono::milliseconds limit) const;
    // Waits for the end of the check, and throws ProviderError when the file is damaged or the check did not
    // come to its end.
    void RequireSoundFile() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace quorvane
