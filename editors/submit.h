// Runs the submit of a page: with a progress bar when it takes long, and with a message when something could
// not be written.
#pragma once

#include "data/lighting_database.h"
#include "model/photo_library.h"
#include "model/working_records.h"

class QWidget;

namespace quorvane {

// submit(progress) runs the statements and calls progress after each row; photoProblem() then tells why
// photos could not be stored. True when everything has been written and is on the disk.
bool RunSubmit(QWidget* page, const CString& caption, CLightingDatabase& database,
               const std::function<SubmitFailures(const ProgressCallback&)>& submit,
               const std::function<PhotoProblem()>& photoProblem = {});

}  // namespace quorvane
