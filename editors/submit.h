// Runs the submit of a page: with a progress bar when it takes long, and with a message when something could
// not be written.
#pragma once

#include "data/lighting_database.h"
#include "model/working_records.h"

class QWidget;

namespace quorvane {

// submit(progress) runs the statements and calls progress after each row. True when everything has been
// written and is on the disk.
bool RunSubmit(QWidget* page, const CString& caption, CLightingDatabase& database,
               const std::function<SubmitFailures(const ProgressCallback&)>& submit);

}  // namespace quorvane
