// Sorting by pinyin, as Chinese readers expect it.
#pragma once

#include <QStringList>

namespace quorvane {

// Whether left sorts before right. A strict weak order on every platform and in every locale. Only equal
// texts are equivalent, also among texts with the same sound.
bool PinyinLess(const QString& left, const QString& right);

// Sorts names of files by pinyin, with numbers by value, so that "2.jpg" comes before "10.jpg". Thread-safe.
void SortFileNames(QStringList& names);

}  // namespace quorvane
