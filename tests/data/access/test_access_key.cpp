// The keys of values, and the values that have none.

#include <QTest>

#include "data/store/access/access_error.h"
#include "data/store/access/index/key.h"

using namespace quorvane::access;
using namespace Qt::StringLiterals;

using ValueBytes = std::optional<QByteArray>;

namespace {

template <typename Number>
QByteArray Bytes(Number number) {
    return QByteArray(reinterpret_cast<const char*>(&number), sizeof(number));
}

}  // namespace

class TestAccessKey : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Values() {
        // A column's type, a value, and its keys in ascending and descending order.
        const std::tuple<ColumnType, ValueBytes, const char*, const char*> cases[] = {
            {ColumnType::Long, std::nullopt, "00", "ff"},
            {ColumnType::Long, Bytes(qint32{1}), "7f80000001", "807ffffffe"},
            {ColumnType::Long, Bytes(qint32{-1}), "7f7fffffff", "8080000000"},
            {ColumnType::Integer, Bytes(qint16{-2}), "7f7ffe", "808001"},
            {ColumnType::Byte, Bytes(quint8{5}), "7f05", "80fa"},
            {ColumnType::Boolean, Bytes(quint8{1}), "7f00", "80ff"},
            {ColumnType::Boolean, Bytes(quint8{0}), "7fff", "8000"},
            {ColumnType::Currency, Bytes(qint64{12500}), "7f80000000000030d4", "807fffffffffffcf2b"},
            {ColumnType::Double, Bytes(0.0), "7f8000000000000000", "807fffffffffffffff"},
            {ColumnType::Double, Bytes(-1.5), "7f4007ffffffffffff", "80bff8000000000000"},
            {ColumnType::Single, Bytes(70.5F), "7fc28d0000", "803d72ffff"},
            {ColumnType::Date, Bytes(40438.5), "7fc0e3bed000000000", "803f1c412fffffffff"},
            {ColumnType::Guid, QByteArray::fromHex("000102030405060708090a0b0c0d0e0f"),
             "7f03020100050407060908090a0b0c0d0e0f08", "80fcfdfefffafbf8f909f7f6f5f4f3f2f1f0f7"},
            // A full block, and a block and one byte.
            {ColumnType::Binary, "abcdefgh"_ba, "7f616263646566676808", "809e9d9c9b9a999897f7"},
            {ColumnType::Binary, "abcdefghi"_ba, "7f616263646566676809690000000000000001",
             "809e9d9c9b9a9998970996fffffffffffffffe"},
        };
        for (const auto& [type, value, ascending, descending] : cases) {
            for (const bool isAscending : {true, false}) {
                QByteArray key;
                AppendKey(key, {type, isAscending, {}}, value);
                QCOMPARE(key.toHex(), QByteArray(isAscending ? ascending : descending));
            }
        }
        QByteArray key;
        QVERIFY_THROWS_EXCEPTION(AccessError, AppendKey(key, {ColumnType::Guid, true, {}}, "short"_ba));
    }

    void Texts() {
        struct Case {
            std::vector<SortOrder> orders;
            QString text;
            const char* key;
        };
        const Case cases[] = {
            {{kGeneralOrder, kChineseOrder}, u""_s, "7f 0100"},
            {{kGeneralOrder, kChineseOrder}, u"a b "_s, "7f 4a074c 0100"},
            {{kGeneralOrder, kChineseOrder}, u"A B"_s, "7f 4a074c 0100"},
            {{kGeneralOrder, kChineseOrder}, u"T5-28W/840"_s, "7f 6d403a46731e463e36 01 010101 800f0682 00"},
            {{kGeneralOrder}, u"abc-é"_s, "7f 4a4c4d51 01 0202020e 010101 80130682 00"},
            {{kGeneralOrder}, u"ßé"_s, "7f 6b6b51 01 02020e 00"},
            {{kChineseOrder}, u"310-315(环线)"_s, "7f 3c3836 3c3840 14 9785c2ec 16 01 010101 80130682 00"},
        };
        for (const auto& [orders, text, key] : cases) {
            for (const SortOrder order : orders) {
                QByteArray ascending;
                AppendTextKey(ascending, {ColumnType::Text, true, order}, text);
                QCOMPARE(ascending.toHex(), QByteArray::fromHex(key).toHex());
            }
        }
        QByteArray descending;
        AppendTextKey(descending, {ColumnType::Text, false, kGeneralOrder}, u"1,7"_s);
        QCOMPARE(descending, QByteArray::fromHex("80c7e5bbfeff00"));
    }

    void UnknownTextsAreRefused() {
        const std::tuple<SortOrder, QString, QString> cases[] = {
            {kGeneralOrder, u"T5荧光"_s, u"荧"_s},
            {kChineseOrder, u"安囍"_s, u"囍"_s},  // an unknown Chinese character
            {kChineseOrder, u"é"_s, u"é"_s},
            {kGeneralOrder, u"ñ"_s, u"ñ"_s},
            {kGeneralOrder, u"a\tb"_s, u"U+0009"_s},
            {kChineseOrder, u"安-1"_s, u"-"_s},  // a hyphen behind a Chinese character
            {kGeneralOrder, QString(256, u'a'), u"255"_s},
            {{1033, 1}, u"a"_s, u"1033"_s},  // another version of the order
        };
        for (const auto& [order, text, named] : cases) {
            QString message;
            try {
                TextKey(text, order);
            } catch (const AccessError& error) {
                message = error.Message();
            }
            QVERIFY2(message.contains(named), qPrintable(text + message));
        }
    }
};

QTEST_GUILESS_MAIN(TestAccessKey)
#include "test_access_key.moc"
