// The order in which a Chinese reader expects a list: by pinyin.
#pragma once

#include <QCollatorSortKey>
#include <QString>

namespace quorvane {

// Whether left stands before right. A strict weak order on every platform and under every locale; texts that
// sound alike are told apart, equal texts are not.
bool PinyinLess(const QString& left, const QString& right);

// The key by which file names sort: by pinyin as well, but numbers in them by their value, so that "2.jpg"
// stands before "10.jpg". Made once a name, keys compare much faster than names. Different names may share
// one. Any thread may call it.
QCollatorSortKey FileNameKey(const QString& name);

}  // namespace quorvane
