#include "model/view/sorting.h"

#include <QCollator>
#include <QHash>
#include <QLocale>
#include <algorithm>
#include <compare>
#include <numeric>

namespace quorvane {
namespace {

template <typename Less>
std::vector<int> Sorted(std::size_t count, SortDirection direction, Less less) {
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    if (direction == SortDirection::Ascending) {
        std::stable_sort(order.begin(), order.end(), less);
    } else {
        std::stable_sort(order.begin(), order.end(),
                         [less](int left, int right) { return less(right, left); });
    }
    return order;
}

template <typename Value>
const Value& Of(const std::vector<Value>& values, int index) {
    return values[static_cast<std::size_t>(index)];
}

}  // namespace

std::vector<int> SortedByNumber(const std::vector<double>& values, SortDirection direction) {
    return Sorted(values.size(), direction, [&](int left, int right) {
        return std::weak_order(Of(values, left), Of(values, right)) < 0;  // a file may hold a NaN
    });
}

// Keys are costly to make and cheap to compare. Most columns hold few different texts, so each text gets one
// key and then a rank.
std::vector<int> SortedByText(const std::vector<CString>& texts, SortDirection direction) {
    const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    QHash<CString, int> numbers;
    std::vector<int> numberOf;
    std::vector<QCollatorSortKey> keys;
    numberOf.reserve(texts.size());
    for (const CString& text : texts) {
        const auto known = numbers.constFind(text);
        if (known != numbers.constEnd()) {
            numberOf.push_back(*known);
            continue;
        }
        numberOf.push_back(static_cast<int>(keys.size()));
        numbers.insert(text, numberOf.back());
        keys.push_back(collator.sortKey(text));
    }
    const std::vector<int> order = Sorted(keys.size(), SortDirection::Ascending, [&](int left, int right) {
        return Of(keys, left) < Of(keys, right);
    });
    std::vector<int> rank(keys.size());
    int last = -1;
    for (const int number : order) {
        const bool isEqual = last >= 0 && Of(keys, last).compare(Of(keys, number)) == 0;
        rank[static_cast<std::size_t>(number)] = last < 0 ? 0 : Of(rank, last) + (isEqual ? 0 : 1);
        last = number;
    }
    return Sorted(texts.size(), direction, [&](int left, int right) {
        return Of(rank, Of(numberOf, left)) < Of(rank, Of(numberOf, right));
    });
}

}  // namespace quorvane
