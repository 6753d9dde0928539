// Calls a member function with the VARIANTs of a late-bound call. The function's signature
// determines the kind of each argument and which ones are by reference.
#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "com/variant_conversion.h"
#include "platform/components.h"

namespace rotacasts::host {

// Converts an argument to the type of `value`. Errors: those of the conversions, such as 13.
void ReadArgument(const VARIANT& argument, std::int16_t& value);
void ReadArgument(const VARIANT& argument, std::int32_t& value);
void ReadArgument(const VARIANT& argument, bool& value);
void ReadArgument(const VARIANT& argument, std::string& value);
void ReadArgument(const VARIANT& argument, std::optional<std::string>& value);
void ReadArgument(const VARIANT& argument, UtilityComponent::Key& value);
void ReadArgument(const VARIANT& argument, HostValue& value);
/// From an object with the properties Number and Description.
void ReadArgument(const VARIANT& argument, RuntimeError& value);

/// Stores the value where a by-reference argument points, in the kind of that variable. Does
/// nothing if the argument is by value or of another kind.
void GiveBack(const VARIANT& argument, const HostValue& value);

/// One argument during a call: its value, written back if the function may change it and did.
template <class Parameter>
class CallArgument {
 public:
  using Value = std::remove_cvref_t<Parameter>;

  explicit CallArgument(const VARIANT& argument) : argument_(argument) {
    ReadArgument(argument, value_);
    if constexpr (kGivenBack) before_ = value_;
  }
  Value& Get() { return value_; }
  void Return() const {
    if constexpr (kGivenBack) {
      if (value_ != before_) GiveBack(argument_, value_);
    }
  }

 private:
  static constexpr bool kIsReference =
      std::is_lvalue_reference_v<Parameter> && !std::is_const_v<std::remove_reference_t<Parameter>>;
  // An error is the caller's object and is not replaced.
  static constexpr bool kGivenBack = kIsReference && !std::is_same_v<Value, RuntimeError>;
  struct Nothing {};

  static Value MakeValue() {
    if constexpr (std::is_same_v<Value, RuntimeError>) {
      return RuntimeError(0, {});
    } else {
      return Value();
    }
  }

  const VARIANT& argument_;
  Value value_ = MakeValue();
  std::conditional_t<kGivenBack, Value, Nothing> before_{};
};

inline HostValue ResultOfCall(const std::vector<std::string>& texts) {
  return HostValue::Texts(texts);
}
template <class Result>
HostValue ResultOfCall(Result result) {
  return HostValue(std::move(result));
}

template <auto Function>
struct MemberCall;

/// Calls `Function`. `reversed` holds the arguments from last to first, as in DISPPARAMS.
template <class Component, class Result, class... Parameters,
          Result (Component::*Function)(Parameters...)>
struct MemberCall<Function> {
  static constexpr UINT kCount = sizeof...(Parameters);

  static HostValue Run(Component& component, const VARIANT* reversed) {
    return Run(component, reversed, std::index_sequence_for<Parameters...>());
  }

 private:
  template <std::size_t... Index>
  static HostValue Run(Component& component, const VARIANT* reversed,
                       std::index_sequence<Index...>) {
    std::tuple<CallArgument<Parameters>...> arguments{reversed[kCount - 1 - Index]...};
    HostValue result;
    if constexpr (std::is_void_v<Result>) {
      (component.*Function)(std::forward<Parameters>(std::get<Index>(arguments).Get())...);
    } else {
      result = ResultOfCall(
          (component.*Function)(std::forward<Parameters>(std::get<Index>(arguments).Get())...));
    }
    (std::get<Index>(arguments).Return(), ...);
    return result;
  }
};

}  // namespace rotacasts::host
