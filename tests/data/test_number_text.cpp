// Numbers as text, all under a locale that writes a decimal comma.

#include <QTest>
#include <cmath>
#include <limits>

#include "data/number_text.h"
#include "tests/support/decimal_comma.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UseDecimalComma(); }
    void FormatsNumbers() {
        const std::pair<double, CString> cases[]{{0.0, u"0"_s},
                                                 {-0.0, u"-0"_s},
                                                 {2600.0, u"2600"_s},
                                                 {28.5, u"28.5"_s},
                                                 {0.000012, u"1.2E-05"_s},
                                                 {0.0001, u"0.0001"_s},
                                                 {999999.0, u"999999"_s},
                                                 {1234567.0, u"1.23457E+06"_s},
                                                 {999999.5, u"1E+06"_s},
                                                 {100000.5, u"100000"_s},
                                                 {100001.5, u"100002"_s},
                                                 {-1.5e-300, u"-1.5E-300"_s},
                                                 {std::numeric_limits<double>::max(), u"1.79769E+308"_s}};
        for (const auto& [value, text] : cases) {
            QCOMPARE(FormatReal(value), text);
        }
        QCOMPARE(FormatFixed2(0.6), u"0.60"_s);
        QCOMPARE(FormatFixed2(0.125), u"0.12"_s);  // an exact tie goes to the even digit
        QCOMPARE(FormatFixed2(1234567.891), u"1234567.89"_s);
        QCOMPARE(FormatInteger(1234567), u"1234567"_s);
        QCOMPARE(FormatInteger(std::numeric_limits<int>::min()), u"-2147483648"_s);
    }

    // Texts that no check has let pass before: what begins like a number counts up to where it ends.
    void ParsesNumbers() {
        const std::tuple<CString, int, double> cases[]{{u""_s, 0, 0},
                                                       {u"abc"_s, 0, 0},
                                                       {u" 12.5x"_s, 12, 12.5},
                                                       {u"-5"_s, -5, 0},
                                                       {u"+5+5"_s, 5, 0},
                                                       {u"+-5"_s, 0, 0},
                                                       {u"1.2.3"_s, 1, 1.2},
                                                       {u"1,5"_s, 1, 1},
                                                       {u"1e5"_s, 1, 1},
                                                       {u".5"_s, 0, 0.5},
                                                       {u"１２"_s, 0, 0},
                                                       {u"nan"_s, 0, 0},
                                                       {u"1\0"_s + u'2', 1, 1},
                                                       {u"99999999999"_s, 2147483647, 99999999999.},
                                                       {u"-99999999999"_s, -2147483647 - 1, 0}};
        for (const auto& [text, integer, real] : cases) {
            QCOMPARE(ToInteger(text), integer);
            QCOMPARE(ToReal(text), real);
        }
        QCOMPARE(ToReal(CString(400, u'9')), std::numeric_limits<double>::infinity());
        QCOMPARE(ToReal(u"0."_s + CString(400, u'0') + u'1'), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestNumberText)
#include "test_number_text.moc"
