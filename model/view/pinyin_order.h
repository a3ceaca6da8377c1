// The order of texts by pinyin, as the system's tables have it.
#pragma once

#include <functional>
#include <vector>

#include "data/records.h"

namespace quorvane {

// Tells of two indices whether the text of the first one comes before that of the second. All texts are
// prepared by the call, so that comparing is cheap. The texts need not live on.
using IndexLess = std::function<bool(int left, int right)>;
IndexLess PinyinOrder(const std::vector<CString>& texts);

}  // namespace quorvane
