// A variant value, as the host and the sibling components pass it.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/runtime_error.h"

namespace rotacasts {

/// One of: empty, an omitted argument, null, a boolean, a 16- or 32-bit integer, a single, a
/// double, a text (UTF-8) or an array of such values indexed from 0. A kind that the core does not
/// know arrives as `Foreign`; every conversion of it raises error 13. An array whose lower bound is
/// above 0 has `OutOfBounds` in the places below it.
class HostValue {
 public:
  struct Missing {
    bool operator==(const Missing&) const = default;
  };
  struct Null {
    bool operator==(const Null&) const = default;
  };
  struct Foreign {
    bool operator==(const Foreign&) const = default;
  };
  struct OutOfBounds {
    bool operator==(const OutOfBounds&) const = default;
  };
  using Array = std::vector<HostValue>;
  using Value = std::variant<std::monostate, Missing, Null, bool, std::int16_t, std::int32_t, float,
                             double, std::string, Array, Foreign, OutOfBounds>;

  HostValue() = default;
  /// Holds exactly this kind; nothing is converted.
  template <class T>
  requires(std::same_as<T, Missing> || std::same_as<T, Null> || std::same_as<T, bool> ||
           std::same_as<T, std::int16_t> || std::same_as<T, std::int32_t> ||
           std::same_as<T, float> || std::same_as<T, double> || std::same_as<T, std::string> ||
           std::same_as<T, Array> || std::same_as<T, Foreign> || std::same_as<T, OutOfBounds>)
      HostValue(T value)
      : value_(std::in_place_type<T>, std::move(value)) {}         // NOLINT: implicit on purpose
  HostValue(const char* text) : value_(std::string(text)) {}       // NOLINT
  HostValue(std::string_view text) : value_(std::string(text)) {}  // NOLINT

  /// An array of texts.
  static HostValue Texts(const std::vector<std::string>& texts) {
    return HostValue(Array(texts.begin(), texts.end()));
  }

  const Value& Get() const { return value_; }
  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  /// The array, or null for any other kind.
  const Array* AsArray() const { return std::get_if<Array>(&value_); }
  /// The text, or null for any other kind.
  std::string* AsText() { return std::get_if<std::string>(&value_); }

  /// Element `index` of the array. Errors: 13 if this is not an array, 9 beyond its bounds.
  const HostValue& At(std::size_t index) const {
    const Array* array = AsArray();
    if (array == nullptr) throw RuntimeError(ErrorNumber::TypeMismatch);
    if (index >= array->size() || std::holds_alternative<OutOfBounds>((*array)[index].value_)) {
      throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    }
    return (*array)[index];
  }

  HostValue& At(std::size_t index) {
    return const_cast<HostValue&>(std::as_const(*this).At(index));
  }

  bool operator==(const HostValue&) const = default;

 private:
  Value value_;
};

}  // namespace rotacasts
