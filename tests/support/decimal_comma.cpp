#include "tests/support/decimal_comma.h"

#include <QLocale>
#include <clocale>
#include <locale>

namespace quorvane {

namespace {

class CommaPunctuation : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

}  // namespace

void UseDecimalComma() {
    std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));  // the locale owns it
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

}  // namespace quorvane
