#include <QCollator>
#include <QLocale>
#include <memory>
#include <utility>
#include <vector>

#include "model/view/pinyin_order.h"

namespace quorvane {
namespace {

QCollator MakeCollator(Digits digits) {
    QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    collator.setNumericMode(digits == Digits::AsNumbers);
    return collator;
}

// A collator serves one thread at a time.
const QCollator& CollatorFor(Digits digits) {
    thread_local const QCollator oneByOne = MakeCollator(Digits::OneByOne);
    thread_local const QCollator asNumbers = MakeCollator(Digits::AsNumbers);
    return digits == Digits::AsNumbers ? asNumbers : oneByOne;
}

}  // namespace

bool PinyinLess(const QString& left, const QString& right) {
    const int order = CollatorFor(Digits::OneByOne).compare(left, right);
    return order != 0 ? order < 0 : left < right;
}

IndexLess PinyinOrder(std::span<const QString> texts, Digits digits) {
    const QCollator& collator = CollatorFor(digits);
    auto keys = std::make_shared<std::vector<QCollatorSortKey>>();
    keys->reserve(texts.size());
    for (const QString& text : texts) {
        keys->push_back(collator.sortKey(text));
    }
    return [keys = std::move(keys)](int left, int right) {
        return (*keys)[static_cast<std::size_t>(left)] < (*keys)[static_cast<std::size_t>(right)];
    };
}

}  // namespace quorvane
