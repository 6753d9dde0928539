#include "base/conversions.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "base/text.h"

namespace rotacasts {
namespace {

[[noreturn]] void RaiseMismatch() {
  throw RuntimeError(ErrorNumber::TypeMismatch);
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

/// The C library's decimal point in this process; the host may have set any locale. Conversions
/// that ignore the locale would make the DLL half as large again.
char DecimalPoint() {
  return *std::localeconv()->decimal_point;
}

/// Rewrites a decimal number for strtod; nullopt if the text is not one.
std::optional<std::string> DecimalSpelling(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == text.npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(" \t") - first + 1);

  std::string spelling;
  std::size_t at = 0;
  const auto sign = [&] {
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
      if (text[at] == '-' || !spelling.empty()) spelling += text[at];
      ++at;
    }
  };
  const auto digits = [&] {
    const std::size_t begin = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') spelling += text[at++];
    return at - begin;
  };

  sign();
  std::size_t mantissa = digits();
  if (at < text.size() && text[at] == '.') {
    if (mantissa == 0) spelling += '0';
    spelling += text[at++];
    mantissa += digits();
  }
  if (mantissa == 0) return std::nullopt;
  if (at < text.size() && std::string_view("eEdD").find(text[at]) != std::string_view::npos) {
    spelling += 'e';
    ++at;
    sign();
    if (digits() == 0) return std::nullopt;
  }
  if (at != text.size()) return std::nullopt;
  return spelling;
}

/// The fast path for most texts: the value of one to nine digits, -1 for anything else.
std::int32_t PlainNumber(std::string_view text) {
  constexpr std::size_t kMostDigits = 9;
  if (text.empty() || text.size() > kMostDigits) return -1;
  std::int32_t number = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return -1;
    number = number * 10 + (digit - '0');
  }
  return number;
}

/// Errors: 13 if the text is not a number, 6 if it exceeds the range of a double.
double ParseNumber(std::string_view text) {
  if (const std::int32_t number = PlainNumber(text); number >= 0) return number;
  std::optional<std::string> spelling = DecimalSpelling(text);
  if (!spelling) RaiseMismatch();
  std::replace(spelling->begin(), spelling->end(), '.', DecimalPoint());
  const double number = std::strtod(spelling->c_str(), nullptr);
  if (std::isinf(number)) throw RuntimeError(ErrorNumber::Overflow);
  return number;
}

std::string Format(const char* format, double number) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, format, number);
  std::string text = buffer;
  std::replace(text.begin(), text.end(), DecimalPoint(), '.');
  return text;
}

template <class Whole>
Whole RoundTo(double number) {
  const double whole = std::nearbyint(number);
  if (!(whole >= std::numeric_limits<Whole>::min() && whole <= std::numeric_limits<Whole>::max())) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<Whole>(whole);
}

}  // namespace

std::string ToText(const HostValue& value) {
  return std::visit(
      Overloaded{
          [](std::monostate) { return std::string(); },
          [](bool truth) { return std::string(truth ? "True" : "False"); },
          [](std::int16_t number) { return std::to_string(number); },
          [](std::int32_t number) { return std::to_string(number); },
          [](float number) { return Format("%.7G", static_cast<double>(number)); },
          [](double number) { return FormatNumber(number); },
          [](const std::string& text) { return text; },
          [](HostValue::Null) -> std::string { throw RuntimeError(ErrorNumber::InvalidUseOfNull); },
          [](const auto&) -> std::string { RaiseMismatch(); },
      },
      value.Get());
}

std::string ToText(HostValue&& value) {
  std::string* const text = value.AsText();
  return text != nullptr ? std::move(*text) : ToText(std::as_const(value));
}

double ToDouble(const HostValue& value) {
  return std::visit(
      Overloaded{
          [](std::monostate) { return 0.0; },
          [](bool truth) { return truth ? -1.0 : 0.0; },
          [](std::int16_t number) { return static_cast<double>(number); },
          [](std::int32_t number) { return static_cast<double>(number); },
          [](float number) { return static_cast<double>(number); },
          [](double number) { return number; },
          [](const std::string& text) { return ParseNumber(text); },
          [](HostValue::Null) -> double { throw RuntimeError(ErrorNumber::InvalidUseOfNull); },
          [](const auto&) -> double { RaiseMismatch(); },
      },
      value.Get());
}

bool ToBoolean(const HostValue& value) {
  if (const auto* text = std::get_if<std::string>(&value.Get())) {
    if (EqualsIgnoringCase(*text, "True")) return true;
    if (EqualsIgnoringCase(*text, "False")) return false;
  }
  return ToDouble(value) != 0;
}

std::int32_t ToLong(const HostValue& value) {
  return RoundTo<std::int32_t>(ToDouble(value));
}
std::int16_t ToInteger(const HostValue& value) {
  return RoundTo<std::int16_t>(ToDouble(value));
}
std::int32_t RoundToLong(double number) {
  return RoundTo<std::int32_t>(number);
}

bool IsNumeric(std::string_view text) {
  try {
    ParseNumber(text);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

bool EqualsTrue(const HostValue& value) {
  return value == HostValue(true) || value == HostValue(std::int16_t{-1}) ||
         value == HostValue(std::int32_t{-1}) || value == HostValue(-1.0F) ||
         value == HostValue(-1.0);
}

std::string FormatNumber(double number) {
  return Format("%.15G", number);
}

std::string FormatTwoDecimals(double number) {
  const auto hundredths = std::llround(number * 100);
  const std::string digits = std::to_string(std::abs(hundredths) % 100 + 100).substr(1);
  return (hundredths < 0 ? "-" : "") + std::to_string(std::abs(hundredths / 100)) + "." + digits;
}

double RoundToTwoDecimals(double number) {
  return std::nearbyint(number * 100) / 100 + 0.0;  // turns -0 into 0
}

}  // namespace rotacasts
