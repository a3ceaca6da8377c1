// Sorting by pinyin, as Chinese readers expect it.
#pragma once

#include <QCollatorSortKey>
#include <QString>

namespace quorvane {

// Whether left sorts before right. A strict weak order on every platform and in every locale. Only equal
// texts are equivalent, also among texts with the same sound.
bool PinyinLess(const QString& left, const QString& right);

// The sort key of a file name: by pinyin, with numbers by value, so that "2.jpg" comes before "10.jpg". Keys
// compare much faster than names. Different names may have equal keys. Thread-safe.
QCollatorSortKey FileNameKey(const QString& name);

}  // namespace quorvane
