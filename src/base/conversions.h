// Conversions between kinds of values by the platform's rules, in one place for every machine.
//
// Numbers become whole numbers by rounding to the nearest, halves to the even neighbour; what does
// not fit raises error 6. A text is a number when it is a decimal one: blanks around it, a leading
// sign, "." as the decimal point on every machine, an exponent after E or D. True is -1, False 0
// and the empty value 0 or "". Null raises error 94; anything else that has no value of the wanted
// kind raises error 13.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/host_value.h"

namespace rotacasts {

/// A double has at most 15 significant digits as a text, a single at most 7.
std::string ToText(const HostValue& value);
/// The same, with the text itself where it is one.
std::string ToText(HostValue&& value);
std::int32_t ToLong(const HostValue& value);
std::int16_t ToInteger(const HostValue& value);
double ToDouble(const HostValue& value);
bool ToBoolean(const HostValue& value);

/// The 32-bit whole number nearest to `number`, halves to the even neighbour, or error 6.
std::int32_t RoundToLong(double number);

/// Whether the text converts to a number. The empty text does not.
bool IsNumeric(std::string_view text);
/// Whether the value equals True: the boolean, or the number -1 that stands for it.
bool EqualsTrue(const HostValue& value);

/// Plain decimal with up to 15 significant digits and "." as the decimal point: 2, 0.5, -33.33.
std::string FormatNumber(double number);
/// Exactly two decimals: 2 as "2.00". For numbers up to 10^16.
std::string FormatTwoDecimals(double number);
/// `number` rounded to two decimals: scaled by 100, rounded with halves to the even neighbour.
double RoundToTwoDecimals(double number);

}  // namespace rotacasts
