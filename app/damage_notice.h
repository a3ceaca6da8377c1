// DamageNotice: tells the user once when the check of the database file, which may go on after the window is
// there, has found damage.
#pragma once

#include <QTimer>

#include "data/lighting_database.h"

namespace quorvane {

class DamageNotice {
public:
    // Starts waiting for the end of the check. Both outlive the notice; window is the parent of the message.
    DamageNotice(CLightingDatabase& database, QWidget& window);

private:
    void Look();

    CLightingDatabase& m_database;
    QWidget& m_window;
    QTimer m_timer;
};

}  // namespace quorvane
