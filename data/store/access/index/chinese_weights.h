// The known weights of Chinese characters in the index keys of the order 2052, version 0
// (docs/access-files.md, "Keys of texts").
#pragma once

#include <QtGlobal>

namespace quorvane::access {

// The character's two bytes in a key, most significant first; 0 when its weight is not known.
quint16 WeightOfChineseCharacter(char16_t character);

}  // namespace quorvane::access
