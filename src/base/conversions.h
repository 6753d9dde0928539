// Conversions between kinds of values, by the platform's rules and alike on every machine.
//
// Numbers are rounded to the nearest whole number, halves to even; error 6 if the result does not
// fit. A text is a number if it is decimal: blanks around it, a leading sign, "." as the decimal
// point, an exponent after E or D. True is -1, False is 0, the empty value is 0 or "". Null raises
// error 94; anything else without a value of the wanted kind raises error 13.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/host_value.h"

namespace rotacasts {

/// As text a double has at most 15 significant digits, a single at most 7.
std::string ToText(const HostValue& value);
/// Like the other, but moves a text instead of copying it.
std::string ToText(HostValue&& value);
std::int32_t ToLong(const HostValue& value);
std::int16_t ToInteger(const HostValue& value);
double ToDouble(const HostValue& value);
bool ToBoolean(const HostValue& value);

/// Rounds to the nearest whole number, halves to even. Errors: 6 if it does not fit in 32 bits.
std::int32_t RoundToLong(double number);

/// Whether the text converts to a number; false for an empty text.
bool IsNumeric(std::string_view text);
/// Whether the value equals True: the boolean, or the number -1 that stands for it.
bool EqualsTrue(const HostValue& value);

/// The number with up to 15 significant digits and "." as the decimal point: 2, 0.5, -33.33.
std::string FormatNumber(double number);
/// The number with exactly two decimals: 2 as "2.00". Requires: |number| is at most 10^16.
std::string FormatTwoDecimals(double number);
/// Scales by 100, rounds halves to even and scales back.
double RoundToTwoDecimals(double number);

}  // namespace rotacasts
