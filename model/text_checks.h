// The checks that every editor runs on typed texts, and the splitting of joined texts.
#pragma once

#include <optional>
#include <vector>

#include "data/records.h"

namespace quorvane {

// The value of an unsigned decimal: blanks around it are ignored; ASCII digits and at most one point, at
// least one digit. A sign or an exponent makes it no number, and so does a value too large for a double.
std::optional<double> CheckReal(const CString& text);

// The value of an integer: ASCII digits, "-" and "+"; the first "-" and the first "+", where there is one,
// stand at the very beginning. Nothing is trimmed and no digit is required: "" and "-" are 0. Values beyond
// 32 bits are held at its limits.
std::optional<int> CheckInteger(const CString& text);

// The pieces before each separator, empty ones included, and the rest after the last one unless it is empty.
std::vector<CString> Split(const CString& text, QChar separator);

}  // namespace quorvane
