#include <QTest>
#include <limits>

#include "editors/light_source_text.h"
#include "editors/text_checks.h"

using namespace quorvane;

class TestTextChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Numbers() {
        const std::pair<CString, double> reals[] = {
            {u"0"_qs, 0}, {u" 12.5\t"_qs, 12.5}, {u".5"_qs, 0.5}, {u"5."_qs, 5}, {u"0007"_qs, 7}};
        for (const auto& [text, value] : reals) {
            QCOMPARE(CheckReal(text).value_or(-1), value);
        }
        for (const CString& text :
             {u""_qs, u" "_qs, u"."_qs, u"-5"_qs, u"+5"_qs, u"1.2.3"_qs, u"1e5"_qs, u"1,5"_qs, u"１２"_qs,
              u"٣"_qs, u"1 2"_qs, u"NaN"_qs, CString(400, u'9')}) {
            QVERIFY2(!CheckReal(text).has_value(), qUtf8Printable(text));
        }
        const std::pair<CString, int> integers[] = {{u""_qs, 0},
                                                    {u"-"_qs, 0},
                                                    {u"-1"_qs, -1},
                                                    {u"+5"_qs, 5},
                                                    {u"99999999999"_qs, std::numeric_limits<int>::max()}};
        for (const auto& [text, value] : integers) {
            QCOMPARE(CheckInteger(text).value_or(-99), value);
        }
        for (const CString& text :
             {u" 5"_qs, u"5 "_qs, u"5-"_qs, u"1.5"_qs, u"abc"_qs, u"３"_qs, u"-+5"_qs}) {
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
