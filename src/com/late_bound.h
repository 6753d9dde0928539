// Calling a COM object by member name.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "com/variant_conversion.h"

namespace rotacasts::win32 {

/// A COM object behind its dispatch interface. Raises the object's own errors as run-time errors:
/// the number and description that it gives, 438 for a member that it does not have.
class LateBound {
 public:
  /// Creates the object by its programmatic identifier. Error 429 when that fails.
  static LateBound Create(const char* progId);
  explicit LateBound(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  /// The dispatch identifier of a member. Error 438 when there is none.
  DISPID Identify(const char* member) const;
  /// Calls a member. The arguments stand in the order of the dispatch mechanism, which is call
  /// order reversed, and stay the caller's; the result is the caller's.
  ComVariant Invoke(DISPID member, VARIANT* reversed, std::size_t count) const {
    DISPPARAMS parameters{reversed, nullptr, static_cast<UINT>(count), 0};
    ComVariant answer;
    EXCEPINFO exception{};
    const HRESULT result = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT,
                                           DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                                           answer.Address(), &exception, nullptr);
    if (FAILED(result)) Raise(result, exception);
    return answer;
  }

  IDispatch* Get() const { return object_.Get(); }

 private:
  /// Raises a call's failure, and takes over what the object says of it.
  [[noreturn]] static void Raise(HRESULT result, EXCEPINFO& exception);

  ComPtr<IDispatch> object_;
};

/// One member of a late-bound object; its identifier is looked up at the first call.
class Member {
 public:
  Member(const LateBound& object, const char* name) : object_(object), name_(name) {}

  template <class... Arguments>
  ComVariant operator()(Arguments&&... arguments) {
    if (id_ == DISPID_UNKNOWN) id_ = object_.Identify(name_);
    VARIANT reversed[sizeof...(arguments) + 1];
    [[maybe_unused]] VARIANT* place = reversed + sizeof...(arguments);
    (arguments.Put(*--place), ...);
    ComVariant result = object_.Invoke(id_, reversed, sizeof...(arguments));
    (arguments.WriteBack(), ...);
    return result;
  }

 private:
  const LateBound& object_;
  const char* name_;
  DISPID id_ = DISPID_UNKNOWN;
};

// Arguments of a call. Put() writes the VARIANT, which the argument owns; WriteBack() takes over
// what the callee has changed in a by-reference one. What it has left alone is not written: the
// caller's own variable may have been changed inside the call, by another call of the host.

/// By value: a text, which may be none at all.
class TextArgument {
 public:
  explicit TextArgument(const std::string& text) : text_(text) {}
  TextArgument() = default;  // no text at all
  void Put(VARIANT& place) const {
    place.vt = VT_BSTR;
    place.bstrVal = text_.Get();
  }
  void WriteBack() const {}

 private:
  Bstr text_;
};

/// By value: a whole number.
class NumberArgument {
 public:
  explicit NumberArgument(std::int32_t number) : kind_(VT_I4), number_(number) {}
  explicit NumberArgument(std::int16_t number) : kind_(VT_I2), number_(number) {}
  void Put(VARIANT& place) const {
    place.vt = kind_;
    place.lVal = number_;  // a 16-bit number lies in its lower half
  }
  void WriteBack() const {}

 private:
  VARTYPE kind_;
  std::int32_t number_;
};

/// By value: any other value.
class ValueArgument {
 public:
  explicit ValueArgument(const HostValue& value) : value_(ToComVariant(value)) {}
  void Put(VARIANT& place) const { place = value_.Get(); }
  void WriteBack() const {}

 private:
  ComVariant value_;
};

/// By reference: a number or a boolean of the caller's, in the form in which it is passed.
template <class Value, class Passed, VARTYPE kind>
class PlainReference {
 public:
  explicit PlainReference(Value& value) : value_(value) {}
  void Put(VARIANT& place) {
    place.vt = VT_BYREF | kind;
    place.byref = &passed_;
  }
  void WriteBack() const {
    if (passed_ != before_) value_ = static_cast<Value>(passed_);
  }

 private:
  static Passed FormOf(Value value) {
    if constexpr (kind == VT_BOOL) {
      return value ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
      return value;
    }
  }

  Value& value_;
  const Passed before_ = FormOf(value_);
  Passed passed_ = before_;
};
using IntegerReference = PlainReference<std::int16_t, SHORT, VT_I2>;
using LongReference = PlainReference<std::int32_t, LONG, VT_I4>;
using BooleanReference = PlainReference<bool, VARIANT_BOOL, VT_BOOL>;

/// By reference: a text of the caller's.
class TextReference {
 public:
  explicit TextReference(std::string& text) : text_(text), value_(text) {}
  void Put(VARIANT& place) {
    place.vt = VT_BYREF | VT_BSTR;
    place.pbstrVal = value_.Address();
  }
  void WriteBack() const {
    std::string text = FromBstr(value_.Get());
    if (text != before_) text_ = std::move(text);
  }

 private:
  std::string& text_;
  const std::string before_ = text_;
  Bstr value_;
};

/// By reference: any VARIANT of the caller's; what the callee leaves in it is not taken over.
class VariantReference {
 public:
  explicit VariantReference(ComVariant& value) : value_(value) {}
  void Put(VARIANT& place) {
    VARIANT& value = *value_.Address();
    place.vt = static_cast<VARTYPE>(value.vt | VT_BYREF);
    if (value.vt == VT_DISPATCH) {
      place.ppdispVal = &value.pdispVal;
    } else {
      place.pparray = &value.parray;
    }
  }
  void WriteBack() const {}

 private:
  ComVariant& value_;
};

/// The run-time error number that a result code stands for, and the other way round: the platform
/// gives its own numbers the facility of controls (0x800A).
std::int32_t ErrorNumberOf(HRESULT result);
HRESULT ResultOf(std::int32_t errorNumber);

}  // namespace rotacasts::win32
