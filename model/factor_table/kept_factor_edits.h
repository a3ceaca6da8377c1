// The edits of a factor table that were kept when the program ended, and what they are on the file as it is
// now.
#pragma once

#include <optional>

#include "data/utilization_factor_table.h"

namespace quorvane {

struct KeptFactorEdits {
    int luminaireId = 0;
    UtilizationFactorTable::Contents stored;  // the table as the file held it
    UtilizationFactorTable::Contents edited;
};

// The edited table on the rows of the file: those of then, or what a submit that was cut short has made of
// them. Nothing when the file holds anything else.
std::optional<UtilizationFactorTable::Contents> EditsOnFile(const KeptFactorEdits& kept,
                                                            const UtilizationFactorTable::Contents& file);

// Whether a submit of the edited table would change nothing. False where the table has surplus rows.
bool IsInFile(const UtilizationFactorTable::Contents& edited, const UtilizationFactorTable::Contents& file);

}  // namespace quorvane
