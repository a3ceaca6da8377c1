// Makes the decimal comma and digit grouping the default of everything that could fall for it.
#pragma once

#include <QLocale>
#include <clocale>
#include <locale>

namespace quorvane {

// Sets the C, C++ and Qt default locales to German for the rest of the process. A system without German
// still gets a C++ and a Qt locale with a comma.
inline void UseDecimalComma() {
    struct CommaPunctuation : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));  // the locale owns it
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

}  // namespace quorvane
