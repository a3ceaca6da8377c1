// Makes the decimal comma and digit grouping the default of everything that could fall for it.
#pragma once

namespace quorvane {

// Sets the C, C++ and Qt default locales to German for the rest of the process. A system without German
// still gets a C++ and a Qt locale with a comma.
void UseDecimalComma();

}  // namespace quorvane
