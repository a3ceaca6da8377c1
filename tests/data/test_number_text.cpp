// Numbers as text, all under a locale that writes a decimal comma.

#include <QLocale>
#include <QTest>
#include <clocale>
#include <limits>

#include "data/number_text.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// Sets the default locales of C and Qt to German for the rest of the process.
void UseDecimalComma() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    QLocale::setDefault(QLocale(QLocale::German));
}

}  // namespace

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UseDecimalComma(); }
    void FormatsNumbers() {
        QStringList texts;
        for (const double value : {0.0, -0.0, 2600.0, 28.5, 0.000012, 0.0001, 999999.0, 1234567.0, 999999.5,
                                   100000.5, 100001.5, -1.5e-300, std::numeric_limits<double>::max()}) {
            texts += FormatReal(value);
        }
        QCOMPARE(texts,
                 u"0 -0 2600 28.5 1.2E-05 0.0001 999999 1.23457E+06 1E+06 100000 100002 -1.5E-300 "
                 "1.79769E+308"_s.split(u' '));
        // An exact tie goes to the even digit.
        QCOMPARE(FormatFixed2(0.6) + FormatFixed2(0.125) + FormatFixed2(1234567.891),
                 u"0.600.121234567.89"_s);
        QCOMPARE(FormatInteger(1234567), u"1234567"_s);
        QCOMPARE(FormatInteger(std::numeric_limits<int>::min()), u"-2147483648"_s);
    }

    // Texts that no check has let pass before: what begins like a number counts up to where it ends.
    void ParsesNumbers() {
        std::vector<int> integers;
        std::vector<double> reals;
        for (const QString& text :
             {u""_s, u"abc"_s, u" 12.5x"_s, u"-5"_s, u"+5+5"_s, u"+-5"_s, u"1.2.3"_s, u"1,5"_s, u"1e5"_s,
              u".5"_s, u"１２"_s, u"nan"_s, u"1\0"_s + u'2', u"99999999999"_s, u"-99999999999"_s,
              QString(400, u'9'), u"0."_s + QString(400, u'0') + u'1'}) {
            integers.push_back(ToInteger(text));
            reals.push_back(ToReal(text));
        }
        const int most = std::numeric_limits<int>::max();
        QCOMPARE(integers, std::vector({0, 0, 12, -5, 5, 0, 1, 1, 1, 0, 0, 0, 1, most, -most - 1, most, 0}));
        QCOMPARE(reals, std::vector<double>({0, 0, 12.5, 0, 0, 0, 1.2, 1, 1, 0.5, 0, 0, 1, 99999999999, 0,
                                             std::numeric_limits<double>::infinity(), 0}));
    }
};

QTEST_GUILESS_MAIN(TestNumberText)
#include "test_number_text.moc"
