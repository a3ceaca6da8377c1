// CQuorvaneApp: one run of the program, from the connection to the end of the main window.
#pragma once

#include "data/lighting_database.h"

class QApplication;

namespace quorvane {

class CQuorvaneApp {
public:
    explicit CQuorvaneApp(QApplication& application);
    ~CQuorvaneApp();

    // Connects to the database and runs the main window until it closes. Shows a message and returns when the
    // database cannot be opened.
    void Run();

private:
    QApplication& m_application;
    CLightingDatabase m_database;  // the only one of the program
};

}  // namespace quorvane
