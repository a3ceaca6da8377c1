#include "widgets/chinese_order.h"

#include <QCollator>
#include <QLocale>

namespace quorvane {

bool PinyinLess(const QString& left, const QString& right) {
    static const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    const int order = collator.compare(left, right);
    return order != 0 ? order < 0 : left < right;
}

QCollatorSortKey FileNameKey(const QString& name) {
    // A collator serves one thread at a time.
    thread_local const QCollator collator = [] {
        QCollator numeric(QLocale(QLocale::Chinese, QLocale::China));
        numeric.setNumericMode(true);
        return numeric;
    }();
    return collator.sortKey(name);
}

}  // namespace quorvane
