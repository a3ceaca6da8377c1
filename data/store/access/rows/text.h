// Stored texts: plain UTF-16, or compressed (docs/access-files.md, "Texts").
#pragma once

#include "data/store/access/bytes.h"

namespace quorvane::access {

// Throws when the bytes end within a character.
QString DecodeText(QByteArrayView bytes);

// COMPRESS asks for the compressed form; the plain one is given nevertheless where that is not longer, or
// where the compressed form could not tell the text. Throws for a text that the format has no bytes for: one
// that begins with U+FEFF, or holds half a surrogate pair.
QByteArray EncodeText(const QString& text, bool compress);

}  // namespace quorvane::access
