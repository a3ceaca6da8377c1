#include <QTest>

#include "data/number_text.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"

using namespace quorvane;

class TestTextChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Numbers() {
        for (const CString& text : {u"0"_qs, u" 12.5\t"_qs, u".5"_qs, u"5."_qs, u"0007"_qs}) {
            QCOMPARE(CheckReal(text), std::optional(ToReal(text)));
        }
        for (const CString& text : {u""_qs, u"."_qs, u"-5"_qs, u"+5"_qs, u"1.2.3"_qs, u"1e5"_qs, u"1,5"_qs,
                                    u"１２"_qs, u"٣"_qs, u"1 2"_qs, u"NaN"_qs, CString(400, u'9')}) {
            QVERIFY2(!CheckReal(text).has_value(), qUtf8Printable(text));
        }
        for (const CString& text : {u""_qs, u"-"_qs, u"-1"_qs, u"+5"_qs, u"99999999999"_qs}) {
            QCOMPARE(CheckInteger(text), std::optional(ToInteger(text)));
        }
        for (const CString& text : {u" 5"_qs, u"5-"_qs, u"1.5"_qs, u"abc"_qs, u"３"_qs, u"-+5"_qs}) {
            QVERIFY2(!CheckInteger(text).has_value(), qUtf8Printable(text));
        }
    }

    void SplitTexts() {
        using Pieces = std::vector<CString>;
        QCOMPARE(Split(u"80,50,20,"_qs, u','), Pieces({u"80"_qs, u"50"_qs, u"20"_qs}));
        QCOMPARE(Split(u",a,,b"_qs, u','), Pieces({u""_qs, u"a"_qs, u""_qs, u"b"_qs}));
        QCOMPARE(Split(u""_qs, u','), Pieces());
        QCOMPARE(SplitLightSourceText(u"灯:a:b"_qs), (LightSourceParts{u"灯"_qs, u"a:b"_qs}));
        QCOMPARE(SplitLightSourceText(u"灯"_qs), (LightSourceParts{u"灯"_qs, {}}));
        QCOMPARE(SplitLightSourceText(u":b"_qs), (LightSourceParts{{}, u"b"_qs}));
    }
};

QTEST_APPLESS_MAIN(TestTextChecks)
#include "test_text_checks.moc"
