#include "model/view/sorting.h"

#include <algorithm>
#include <compare>
#include <numeric>

#include "model/view/pinyin_order.h"

namespace quorvane {
namespace {

// less(left, right) tells whether one index comes before another one.
template <typename Less>
std::vector<int> Sorted(std::size_t count, SortDirection direction, const Less& less) {
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    const bool isAscending = direction == SortDirection::Ascending;
    std::stable_sort(order.begin(), order.end(), [isAscending, &less](int left, int right) {
        return isAscending ? less(left, right) : less(right, left);
    });
    return order;
}

template <typename Value>
const Value& Of(const std::vector<Value>& values, int index) {
    return values[static_cast<std::size_t>(index)];
}

}  // namespace

std::vector<int> SortedByNumber(const std::vector<double>& values, SortDirection direction) {
    return Sorted(values.size(), direction, [&](int left, int right) {
        return std::is_lt(std::weak_order(Of(values, left), Of(values, right)));  // a file may hold a NaN
    });
}

std::vector<int> SortedByText(const std::vector<CString>& texts, SortDirection direction) {
    return Sorted(texts.size(), direction, PinyinOrder(texts));
}

}  // namespace quorvane
