// Runs the submit of a page: with a progress bar when it takes long, and with a message when something could
// not be written.
#pragma once

#include "data/lighting_database.h"
#include "model/records/working_records.h"

class QWidget;

namespace quorvane {

struct SubmitSteps {
    // Before the file is locked.
    std::function<void(const ProgressCallback& progress)> prepare = {};
    // Runs the statements and calls progress after each row.
    std::function<SubmitFailures(const ProgressCallback& progress)> write;
    // Reads the records again, and adds those that are not in the file as they are shown.
    std::function<void(SubmitFailures&)> compare;
};

void RunSubmit(QWidget* page, const CString& caption, CLightingDatabase& database, const SubmitSteps& steps);

}  // namespace quorvane
