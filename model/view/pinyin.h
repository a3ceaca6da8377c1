// The initials by which Chinese texts are typed fast: "yg" for 荧光.
#pragma once

#include <QChar>

namespace quorvane {

// The first letter of a Chinese character's pinyin, in lower case; the character itself, in lower case, when
// it is none of the common Chinese ones. A character with several readings has that of its place in the
// dictionary order. Not thread-safe.
char16_t PinyinInitial(QChar character);

}  // namespace quorvane
