// Bytes and the little-endian numbers in them (docs/access-files.md, "Pages"). Every access is checked: the
// bytes come from strangers.
#pragma once

#include <QByteArray>
#include <span>

#include "data/store/access/access_error.h"

namespace quorvane::access {

using ByteSpan = std::span<char>;

// A part of the bytes, or AccessError where they do not reach so far.
inline QByteArrayView Part(QByteArrayView bytes, qsizetype offset, qsizetype length) {
    if (offset < 0 || length < 0 || offset > bytes.size() || length > bytes.size() - offset) {
        ThrowDamaged(QStringLiteral("a structure reaches beyond its end"));
    }
    return bytes.sliced(offset, length);
}
inline ByteSpan Part(ByteSpan bytes, qsizetype offset, qsizetype length) {
    Part(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())), offset, length);
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

// Reads COUNT bytes as a number, least significant byte first.
inline quint64 ReadNumber(QByteArrayView bytes, qsizetype offset, qsizetype count) {
    const QByteArrayView part = Part(bytes, offset, count);
    quint64 number = 0;
    for (qsizetype index = count; index-- > 0;) {
        number = number << 8 | static_cast<quint8>(part[index]);
    }
    return number;
}
inline quint8 ReadU8(QByteArrayView bytes, qsizetype offset) {
    return static_cast<quint8>(ReadNumber(bytes, offset, 1));
}
inline quint16 ReadU16(QByteArrayView bytes, qsizetype offset) {
    return static_cast<quint16>(ReadNumber(bytes, offset, 2));
}
inline quint32 ReadU24(QByteArrayView bytes, qsizetype offset) {
    return static_cast<quint32>(ReadNumber(bytes, offset, 3));
}
inline quint32 ReadU32(QByteArrayView bytes, qsizetype offset) {
    return static_cast<quint32>(ReadNumber(bytes, offset, 4));
}

// Writes the COUNT lowest bytes of a number, least significant byte first.
inline void WriteNumber(ByteSpan bytes, qsizetype offset, qsizetype count, quint64 number) {
    for (char& byte : Part(bytes, offset, count)) {
        byte = static_cast<char>(number);
        number >>= 8;
    }
}
inline void WriteU8(ByteSpan bytes, qsizetype offset, quint8 number) {
    WriteNumber(bytes, offset, 1, number);
}
inline void WriteU16(ByteSpan bytes, qsizetype offset, quint16 number) {
    WriteNumber(bytes, offset, 2, number);
}
inline void WriteU32(ByteSpan bytes, qsizetype offset, quint32 number) {
    WriteNumber(bytes, offset, 4, number);
}
inline void AppendNumber(QByteArray& bytes, qsizetype count, quint64 number) {
    for (; count > 0; --count) {
        bytes += static_cast<char>(number);
        number >>= 8;
    }
}

}  // namespace quorvane::access
