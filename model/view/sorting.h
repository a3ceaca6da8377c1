// Sorting of columns as their readers expect it.
#pragma once

#include <vector>

#include "data/records.h"

namespace quorvane {

enum class SortDirection { Ascending, Descending };

// The indices of the values in sorted order. Equal values keep their order in both directions. Texts are
// sorted by pinyin.
std::vector<int> SortedByNumber(const std::vector<double>& values, SortDirection direction);
std::vector<int> SortedByText(const std::vector<CString>& texts, SortDirection direction);

}  // namespace quorvane
