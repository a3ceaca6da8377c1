// CQuorvaneApp: one run of the program, from its guard to its last window.
#pragma once

#include "data/lighting_database.h"

class QApplication;

namespace quorvane {

class CQuorvaneApp {
public:
    explicit CQuorvaneApp(QApplication& application);
    ~CQuorvaneApp();

    // Connects to the database and runs the main window until it closes; says so and ends when the database
    // cannot be opened.
    void Run();

private:
    QApplication& m_application;
    CLightingDatabase m_database;  // the program's only one
};

}  // namespace quorvane
