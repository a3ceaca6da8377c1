#include <QCollator>
#include <QLocale>
#include <memory>
#include <utility>

#include "model/view/pinyin_order.h"

namespace quorvane {

IndexLess PinyinOrder(const std::vector<CString>& texts) {
    static const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    auto keys = std::make_shared<std::vector<QCollatorSortKey>>();
    keys->reserve(texts.size());
    for (const CString& text : texts) {
        keys->push_back(collator.sortKey(text));
    }
    return [keys = std::move(keys)](int left, int right) {
        return (*keys)[static_cast<std::size_t>(left)] < (*keys)[static_cast<std::size_t>(right)];
    };
}

}  // namespace quorvane
