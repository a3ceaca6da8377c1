// ColumnFilter: which values of one column the user wants to see: texts that hold something, or numbers in a
// range.
#pragma once

#include <optional>

#include "model/view/text_matcher.h"

namespace quorvane {

struct ColumnFilter {
    CString text = {};                 // of a column of texts
    std::optional<double> least = {};  // of a column of numbers; none: no limit
    std::optional<double> most = {};   // likewise
    bool IsEmpty() const { return text.isEmpty() && !least && !most; }
    bool LetsPass(double value) const {
        return !(value < least.value_or(value)) && !(value > most.value_or(value));
    }
    bool operator==(const ColumnFilter&) const = default;
};

}  // namespace quorvane
