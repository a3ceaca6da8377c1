// The order of texts by pinyin, as Chinese readers expect it and the system's tables have it. The same in
// every locale. Thread-safe.
#pragma once

#include <QStringList>
#include <functional>
#include <span>

namespace quorvane {

// How digits count: one by one, or as the number that they form ("2" before "10").
enum class Digits { OneByOne, AsNumbers };

// Tells of two indices whether the text of the first one comes before that of the second. All texts are
// prepared by the call, so that comparing is cheap. The texts need not live on.
using IndexLess = std::function<bool(int left, int right)>;
IndexLess PinyinOrder(std::span<const QString> texts, Digits digits = Digits::OneByOne);

// Whether left sorts before right. Only equal texts are equivalent, also among texts with the same sound.
bool PinyinLess(const QString& left, const QString& right);

// Sorts names of files, with numbers by value, so that "2.jpg" comes before "10.jpg".
void SortFileNames(QStringList& names);

}  // namespace quorvane
