#include <QTest>

#include "data/number_text.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestTextChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Numbers() {
        for (const CString& text : {u"0"_s, u" 12.5\t"_s, u".5"_s, u"5."_s, u"0007"_s}) {
            QCOMPARE(CheckReal(text), std::optional(ToReal(text)));
        }
        for (const CString& text : {u""_s, u"."_s, u"-5"_s, u"+5"_s, u"1.2.3"_s, u"1e5"_s, u"1,5"_s,
                                    u"１２"_s, u"٣"_s, u"1 2"_s, u"NaN"_s, CString(400, u'9')}) {
            QVERIFY2(!CheckReal(text).has_value(), qUtf8Printable(text));
        }
        for (const CString& text : {u""_s, u"-"_s, u"-1"_s, u"+5"_s, u"99999999999"_s}) {
            QCOMPARE(CheckInteger(text), std::optional(ToInteger(text)));
        }
        for (const CString& text : {u" 5"_s, u"5-"_s, u"1.5"_s, u"abc"_s, u"３"_s, u"-+5"_s}) {
            QVERIFY2(!CheckInteger(text).has_value(), qUtf8Printable(text));
        }
    }

    void TypedNumbers() {
        QCOMPARE(TypedReal(u"1.23457E+06"_s, 1234567), 1234567.0);  // what the present value shows
        QCOMPARE(TypedReal(u"1.23457E+06"_s, 5), 0.0);
        QCOMPARE(TypedReal(u" 12.5 "_s, 5), 12.5);
        QCOMPARE(TypedReal(u"0.123457"_s, 0.12345678), 0.123457);
        QCOMPARE(TypedInteger(u"+3"_s), 3);
        QCOMPARE(TypedInteger(u"1.5"_s), 0);
    }

    void SplitTexts() {
        using Pieces = std::vector<CString>;
        QCOMPARE(Split(u"80,50,20,"_s, u','), Pieces({u"80"_s, u"50"_s, u"20"_s}));
        QCOMPARE(Split(u",a,,b"_s, u','), Pieces({u""_s, u"a"_s, u""_s, u"b"_s}));
        QCOMPARE(Split(u""_s, u','), Pieces());
        QCOMPARE(SplitLightSourceText(u"灯:a:b"_s), (LightSourceParts{u"灯"_s, u"a:b"_s}));
        QCOMPARE(SplitLightSourceText(u"灯"_s), (LightSourceParts{u"灯"_s, {}}));
        QCOMPARE(SplitLightSourceText(u":b"_s), (LightSourceParts{{}, u"b"_s}));
    }
};

QTEST_APPLESS_MAIN(TestTextChecks)
#include "test_text_checks.moc"
