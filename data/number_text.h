// How numbers become text and text becomes numbers: in statements, in cells and in files alike, and the same
// under every locale.
#pragma once

#include "data/records.h"

namespace quorvane {

// "%d".
CString FormatInteger(int value);
// "%G": six significant digits, upper-case E, "." as the point.
CString FormatReal(double value);
// "%.2f".
CString FormatFixed2(double value);

// The leading decimal integer of a text ("12abc" is 12, "" and "abc" are 0), held inside 32 bits.
int ToInteger(const CString& text);
// The leading unsigned decimal of a text without exponent ("0.5", ".5", "5."), blanks before it skipped;
// 0 when there is none, and infinity when it is too large for a double.
double ToReal(const CString& text);

}  // namespace quorvane
