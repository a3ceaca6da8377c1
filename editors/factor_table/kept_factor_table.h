// Tells of the edits of a factor table that could not be made again in a later run.
#pragma once

#include <QStringList>

#include "model/factor_table/factor_table_editing.h"

namespace quorvane {

// title names the luminaire.
QStringList RefusedLines(const CString& title, const FactorTableEditing::Kept& kept);

}  // namespace quorvane
