#include "data/store/access/rows/text.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr QByteArrayView kCompressed("\xFF\xFE");
constexpr char kSwitch = '\0';  // between one byte and two bytes a character
constexpr char16_t kMark = 0xFEFF;

bool IsNarrow(QChar character) {
    return character.row() == 0;
}

QString DecodePlain(QByteArrayView bytes) {
    if (bytes.size() % 2 != 0) {
        ThrowDamaged(u"a text ends within a character"_s);
    }
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype index = 0; index < text.size(); ++index) {
        text[index] = QChar(static_cast<uchar>(bytes[2 * index]), static_cast<uchar>(bytes[2 * index + 1]));
    }
    return text;
}

QByteArray EncodePlain(const QString& text) {
    QByteArray bytes;
    bytes.reserve(2 * text.size());
    for (const QChar character : text) {
        bytes += static_cast<char>(character.cell());
        bytes += static_cast<char>(character.row());
    }
    return bytes;
}

QByteArray EncodeCompressed(const QString& text) {
    QByteArray bytes = kCompressed.toByteArray();
    bool narrow = true;
    for (const QChar character : text) {
        if (IsNarrow(character) != narrow) {
            bytes += kSwitch;
            narrow = !narrow;
        }
        bytes += static_cast<char>(character.cell());
        if (!narrow) {
            bytes += static_cast<char>(character.row());
        }
    }
    return bytes;
}

void RefuseUnknown(const QString& text) {
    if (text.startsWith(QChar(kMark))) {
        throw AccessError(u"文字以字节顺序标记(U+FEFF)开头"_s);
    }
    if (!text.isValidUtf16()) {
        throw AccessError(u"文字中含有不完整的字符"_s);
    }
}

}  // namespace

QString DecodeText(QByteArrayView bytes) {
    if (!bytes.startsWith(kCompressed)) {
        return DecodePlain(bytes);
    }
    QString text;
    text.reserve(bytes.size());
    bool narrow = true;
    for (qsizetype at = kCompressed.size(); at < bytes.size(); ++at) {
        if (bytes[at] == kSwitch) {
            narrow = !narrow;
        } else if (narrow) {
            text += QLatin1Char(bytes[at]);
        } else {
            text += QChar(ReadU16(bytes, at));
            ++at;
        }
    }
    return text;
}

QByteArray EncodeText(const QString& text, bool compress) {
    RefuseUnknown(text);
    QByteArray plain = EncodePlain(text);
    const auto looksLikeSwitch = [](QChar character) { return character.cell() == 0; };
    if (!compress || std::any_of(text.begin(), text.end(), looksLikeSwitch)) {
        return plain;
    }
    const QByteArray compressed = EncodeCompressed(text);
    return compressed.size() < plain.size() ? compressed : plain;
}

}  // namespace quorvane::access
