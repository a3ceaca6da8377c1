#include "data/store/access/index/text_key.h"

#include <algorithm>
#include <array>
#include <optional>

#include "data/store/access/access_error.h"
#include "data/store/access/index/chinese_weights.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kMostUnits = 255;  // what longer keys look like was never seen
constexpr char16_t kSharpS = u'ß';

// What one character adds to a key.
struct Weight {
    quint16 primary = 0;   // one byte, or two when it is 0x100 or more; 0: an ignorable character
    quint8 accent = 0;     // 0: none
    quint8 ignorable = 0;  // its code when it is ignorable
};

constexpr Weight Ignorable(quint8 code) {
    return {.ignorable = code};
}

// U+0020 to U+007E.
constexpr std::array kAscii{
    Weight{0x07}, Weight{0x09},    Weight{0x0a},   Weight{0x0c},   Weight{0x0e},   Weight{0x10},
    Weight{0x12}, Ignorable(0x80), Weight{0x14},   Weight{0x16},   Weight{0x18},   Weight{0x2c},
    Weight{0x1a}, Ignorable(0x82), Weight{0x1c},   Weight{0x1e},   Weight{0x36},   Weight{0x38},
    Weight{0x3a}, Weight{0x3c},    Weight{0x3e},   Weight{0x40},   Weight{0x42},   Weight{0x44},
    Weight{0x46}, Weight{0x48},    Weight{0x20},   Weight{0x22},   Weight{0x2e},   Weight{0x30},
    Weight{0x32}, Weight{0x24},    Weight{0x26},   Weight{0x4a},   Weight{0x4c},   Weight{0x4d},
    Weight{0x4f}, Weight{0x51},    Weight{0x53},   Weight{0x55},   Weight{0x57},   Weight{0x59},
    Weight{0x5b}, Weight{0x5c},    Weight{0x5e},   Weight{0x60},   Weight{0x62},   Weight{0x64},
    Weight{0x66}, Weight{0x68},    Weight{0x69},   Weight{0x6b},   Weight{0x6d},   Weight{0x6f},
    Weight{0x71}, Weight{0x73},    Weight{0x75},   Weight{0x76},   Weight{0x78},   Weight{0x27},
    Weight{0x29}, Weight{0x2a},    Weight{0x2b02}, Weight{0x2b03}, Weight{0x2b07}, Weight{0x4a},
    Weight{0x4c}, Weight{0x4d},    Weight{0x4f},   Weight{0x51},   Weight{0x53},   Weight{0x55},
    Weight{0x57}, Weight{0x59},    Weight{0x5b},   Weight{0x5c},   Weight{0x5e},   Weight{0x60},
    Weight{0x62}, Weight{0x64},    Weight{0x66},   Weight{0x68},   Weight{0x69},   Weight{0x6b},
    Weight{0x6d}, Weight{0x6f},    Weight{0x71},   Weight{0x73},   Weight{0x75},   Weight{0x76},
    Weight{0x78}, Weight{0x2b09},  Weight{0x2b0b}, Weight{0x2b0d}, Weight{0x2b0f},
};
static_assert(kAscii.size() == 0x7f - 0x20);

struct Letter {
    char16_t character;
    Weight weight;
};

// The accented letters that were seen in keys, under the General order only.
constexpr std::array kAccented{
    Letter{u'Å', {0x4a, 0x1a}}, Letter{u'Ó', {0x64, 0x0e}}, Letter{kSharpS, {0x6b6b}},
    Letter{u'á', {0x4a, 0x0e}}, Letter{u'â', {0x4a, 0x12}}, Letter{u'ã', {0x4a, 0x19}},
    Letter{u'ä', {0x4a, 0x13}}, Letter{u'å', {0x4a, 0x1a}}, Letter{u'ç', {0x4d, 0x1c}},
    Letter{u'è', {0x51, 0x0f}}, Letter{u'é', {0x51, 0x0e}}, Letter{u'ê', {0x51, 0x12}},
    Letter{u'í', {0x59, 0x0e}}, Letter{u'ó', {0x64, 0x0e}}, Letter{u'ô', {0x64, 0x12}},
    Letter{u'ö', {0x64, 0x13}}, Letter{u'ø', {0x64, 0x21}}, Letter{u'ü', {0x6f, 0x13}},
};

std::optional<Weight> GeneralWeight(char16_t character) {
    if (character >= 0x20 && character < 0x20 + kAscii.size()) {
        return kAscii[character - 0x20];
    }
    const auto letter = std::find_if(kAccented.begin(), kAccented.end(),
                                     [&](const Letter& known) { return known.character == character; });
    return letter == kAccented.end() ? std::nullopt : std::optional(letter->weight);
}

std::optional<Weight> ChineseWeight(char16_t character) {
    if (character <= 0x7e) {
        return GeneralWeight(character);
    }
    const quint16 weight = WeightOfChineseCharacter(character);
    return weight == 0 ? std::nullopt : std::optional(Weight{weight});
}

[[noreturn]] void Refuse(QStringView text, qsizetype position) {
    const bool upperHalf = position > 0 && text[position].isLowSurrogate();
    const QStringView character = text.mid(upperHalf ? position - 1 : position, 1);
    throw AccessError(u"字符“%1”(U+%2)在索引排序中的位置未知"_s.arg(character).arg(
        uint{character.front().unicode()}, 4, 16, QLatin1Char('0')));
}

// The three parts of a key as they grow.
class KeyParts {
public:
    void Add(char16_t character, const Weight& weight) {
        if (weight.ignorable != 0) {
            AddIgnorable(weight.ignorable);
            return;
        }
        if (weight.primary >= 0x100) {
            m_weights += static_cast<char>(weight.primary >> 8);
        }
        m_weights += static_cast<char>(weight.primary & 0xff);
        if (weight.accent != 0) {
            m_accents +=
                QByteArray(m_places - m_accents.size(), kNoAccent) + static_cast<char>(weight.accent);
        }
        // This one sorts as two letters.
        m_places += character == kSharpS ? 2 : 1;
    }

    QByteArray Key() const {
        QByteArray key = m_weights + '\x01' + m_accents;
        if (!m_ignorables.isEmpty()) {
            key += QByteArray(3, '\x01') + m_ignorables;
        }
        return key + '\0';
    }

private:
    static constexpr char kNoAccent = '\x02';

    void AddIgnorable(quint8 code) {
        const auto place = static_cast<quint16>(0x8000 + 7 + 4 * m_places);
        m_ignorables += static_cast<char>(place >> 8);
        m_ignorables += static_cast<char>(place & 0xff);
        m_ignorables += '\x06';
        m_ignorables += static_cast<char>(code);
    }

    QByteArray m_weights;
    QByteArray m_accents;
    QByteArray m_ignorables;
    qsizetype m_places = 0;  // of characters that have a weight
};

}  // namespace

QByteArray TextKey(QStringView text, SortOrder order) {
    if (order != kGeneralOrder && order != kChineseOrder) {
        throw AccessError(u"索引的排序次序%1(版本%2)未知"_s.arg(order.language).arg(order.version));
    }
    if (text.size() > kMostUnits) {
        throw AccessError(u"索引字段中的文字超过%1个字符"_s.arg(kMostUnits));
    }
    while (text.endsWith(u' ')) {
        text.chop(1);
    }
    KeyParts parts;
    bool wasChinese = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t character = text[i].unicode();
        const std::optional<Weight> weight =
            order == kChineseOrder ? ChineseWeight(character) : GeneralWeight(character);
        wasChinese = wasChinese || character > 0x7e;
        // Whether a Chinese character counts as one place or two for what follows was never seen.
        const bool placeUnknown = order == kChineseOrder && wasChinese && weight && weight->ignorable != 0;
        if (!weight || placeUnknown) {
            Refuse(text, i);
        }
        parts.Add(character, *weight);
    }
    return parts.Key();
}

}  // namespace quorvane::access
