#include <QCollator>
#include <QLocale>
#include <algorithm>
#include <vector>

#include "widgets/chinese_order.h"

namespace quorvane {

bool PinyinLess(const QString& left, const QString& right) {
    static const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    const int order = collator.compare(left, right);
    return order != 0 ? order < 0 : left < right;
}

// Sort keys compare much faster than names. A collator serves one thread at a time.
void SortFileNames(QStringList& names) {
    struct Entry {
        QCollatorSortKey key;
        QString name;
    };
    thread_local const QCollator collator = [] {
        QCollator numeric(QLocale(QLocale::Chinese, QLocale::China));
        numeric.setNumericMode(true);
        return numeric;
    }();
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(names.size()));
    for (const QString& name : names) {
        entries.push_back({collator.sortKey(name), name});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        const int order = left.key.compare(right.key);
        return order != 0 ? order < 0 : left.name < right.name;
    });
    std::transform(entries.begin(), entries.end(), names.begin(),
                   [](const Entry& entry) { return entry.name; });
}

}  // namespace quorvane
