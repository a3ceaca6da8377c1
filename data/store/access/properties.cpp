#include "data/store/access/properties.h"

#include <vector>

#include "data/store/access/column_type.h"
#include "data/store/access/rows/text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr QByteArrayView kMagic("MR2\0", 4);
constexpr qsizetype kBlockHead = 6;  // u32 length of the block, u16 kind
constexpr quint16 kNames = 0x80;
constexpr quint16 kOfTable = 0;
constexpr quint16 kOfColumn = 1;
constexpr qsizetype kValueHead = 8;  // u16 length of the value, u8, u8 type, u16 name, u16 length of its data

// A text with its length in front.
QString TakeText(QByteArrayView bytes, qsizetype& at) {
    const qsizetype length = ReadU16(bytes, at);
    const QByteArrayView text = Part(bytes, at + 2, length);
    at += 2 + length;
    return DecodeText(text);
}

void EnterProperty(const QString& name, quint8 type, QByteArrayView data, const QString& column,
                   CatalogEntry& table) {
    const bool isText =
        type == static_cast<quint8>(ColumnType::Text) || type == static_cast<quint8>(ColumnType::Memo);
    const bool isTrue = !data.isEmpty() && data[0] != 0;
    if (name == u"ValidationRule"_s) {
        table.hasValidation |= !data.isEmpty();
        return;
    }
    if (column.isNull()) {
        return;
    }
    ColumnRules& rules = table.rules[column.toLower()];
    if (name == u"Required"_s) {
        rules.required = isTrue;
    } else if (name == u"AllowZeroLength"_s) {
        rules.takesEmpty = isTrue;
    } else if (name == u"DefaultValue"_s && isText) {
        rules.defaultValue = DecodeText(data);
    }
}

void ReadOwner(QByteArrayView body, quint16 kind, const std::vector<QString>& names, CatalogEntry& table) {
    qsizetype at = ReadU32(body, 0);
    QString column;
    if (at > 6) {
        qsizetype nameAt = 4;
        const QString owner = TakeText(body, nameAt);
        column = kind == kOfColumn ? owner : QString();
    }
    while (at < body.size()) {
        const QByteArrayView value = Part(body, at, ReadU16(body, at));
        const quint16 name = ReadU16(value, 4);
        if (value.size() < kValueHead || name >= names.size()) {
            ThrowDamaged(u"the properties of table %1"_s.arg(table.name));
        }
        EnterProperty(names[name], ReadU8(value, 3), Part(value, kValueHead, ReadU16(value, 6)), column,
                      table);
        at += value.size();
    }
}

}  // namespace

void ReadProperties(QByteArrayView bytes, CatalogEntry& table) {
    if (!bytes.startsWith(kMagic)) {
        ThrowDamaged(u"the properties of table %1"_s.arg(table.name));
    }
    std::vector<QString> names;
    for (qsizetype at = kMagic.size(); at < bytes.size();) {
        const QByteArrayView block = Part(bytes, at, static_cast<qsizetype>(ReadU32(bytes, at)));
        const quint16 kind = ReadU16(block, 4);
        const QByteArrayView body = Part(block, kBlockHead, block.size() - kBlockHead);
        if (kind == kNames) {
            for (qsizetype nameAt = 0; nameAt < body.size();) {
                names.push_back(TakeText(body, nameAt));
            }
        } else if (kind == kOfTable || kind == kOfColumn) {
            ReadOwner(body, kind, names, table);
        }
        at += block.size();
    }
}

}  // namespace quorvane::access
