#include "model/view/pinyin_order.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace quorvane {

void SortFileNames(QStringList& names) {
    const QStringList unsorted = names;
    const auto count = static_cast<std::size_t>(unsorted.size());
    const IndexLess less = PinyinOrder({unsorted.constData(), count}, Digits::AsNumbers);
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](int left, int right) {
        return less(left, right) || (!less(right, left) && unsorted.at(left) < unsorted.at(right));
    });
    std::transform(order.begin(), order.end(), names.begin(), [&](int index) { return unsorted.at(index); });
}

}  // namespace quorvane
