// FileNotice: tells the user once what was found when the database was opened: damage, by a check that may go
// on after the window is there, and changes of a former run that could not be brought into the file.
#pragma once

#include <QTimer>

#include "data/lighting_database.h"

namespace quorvane {

class FileNotice {
public:
    // Begins the check a moment later, so that the window is painted before it, and waits for its end and for
    // a moment at which the user is not just typing or choosing. Both outlive the notice.
    FileNotice(CLightingDatabase& database, QWidget& window);

private:
    void Look();

    CLightingDatabase& m_database;
    QWidget& m_window;
    QTimer m_timer;
};

}  // namespace quorvane
