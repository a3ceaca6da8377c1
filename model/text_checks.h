// The checks that every editor applies to typed texts, and the splitting of joined texts. All of them are
// pure functions.
#pragma once

#include <optional>
#include <vector>

#include "data/records.h"

namespace quorvane {

// The value of an unsigned decimal: ASCII digits, at least one, and at most one point; blanks around it are
// ignored. A text with a sign or an exponent, or a value too large for a double, is no number.
std::optional<double> CheckReal(const CString& text);

// The value of an integer: ASCII digits, "-" and "+"; the first "-" and the first "+" may only be the first
// character. Blanks are not trimmed and no digit is required: "" and "-" are 0. Values beyond 32 bits become
// the limit.
std::optional<int> CheckInteger(const CString& text);

// The number that a typed text stands for; 0 for a text that is no number. A form that may not
// be typed, but shows `present`, the value so far, is that value to the last digit ("1.23457E+06").
double TypedReal(const CString& text, double present);
int TypedInteger(const CString& text);

// The pieces before each separator, empty ones included, and the rest after the last one unless it is empty.
std::vector<CString> Split(const CString& text, QChar separator);

}  // namespace quorvane
