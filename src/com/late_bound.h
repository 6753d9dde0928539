// Calling a COM object by member name.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "com/variant_conversion.h"

namespace rotacasts::win32 {

/// Raises error 429, naming the component and why COM refuses it.
[[noreturn]] void RaiseRefused(const char* progId, HRESULT result);

/// A COM object behind its dispatch interface. Raises the object's own errors as run-time errors:
/// the number and description that it gives, 438 for a member that it does not have.
class LateBound {
 public:
  /// Creates the object by its programmatic identifier. Error 429 with the reason when that fails.
  static LateBound Create(const char* progId);
  explicit LateBound(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  /// The dispatch identifier of a member. Errors: 438 if there is none.
  DISPID Identify(const char* member) const;
  /// Calls a member. `reversed` holds the arguments from last to first, as IDispatch takes them,
  /// and stays the caller's. The caller owns the result.
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
  /// Raises the error of a failed call and frees the strings in `exception`.
  [[noreturn]] static void Raise(HRESULT result, EXCEPINFO& exception);

  ComPtr<IDispatch> object_;
};

/// One member of a late-bound object; its identifier is looked up on the first call.
class Member {
 public:
  Member(const LateBound& object, const char* name) : object_(object), name_(name) {}

  template <class... Arguments>
  ComVariant operator()(Arguments&&... arguments) {
    VARIANT reversed[sizeof...(arguments) + 1];
    [[maybe_unused]] VARIANT* place = reversed + sizeof...(arguments);
    (arguments.Put(*--place), ...);
    ComVariant result = Call(reversed, sizeof...(arguments));
    (arguments.WriteBack(), ...);
    return result;
  }

 private:
  ComVariant Call(VARIANT* reversed, std::size_t count) {
    if (id_ == DISPID_UNKNOWN) id_ = object_.Identify(name_);
    return object_.Invoke(id_, reversed, count);
  }

  const LateBound& object_;
  const char* name_;
  DISPID id_ = DISPID_UNKNOWN;
};

// Arguments of a call. Put() fills a VARIANT, whose content stays the argument's. WriteBack()
// copies what the callee changed in a by-reference argument. It leaves an unchanged one alone
// because another call of the host, inside this one, may have changed the caller's variable.

/// By value: a text, or none at all.
class TextArgument {
 public:
  explicit TextArgument(const std::string& text);
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
    place.lVal = number_;  // a 16-bit number is in its lower half
  }
  void WriteBack() const {}

 private:
  VARTYPE kind_;
  std::int32_t number_;
};

/// By value: any other value.
class ValueArgument {
 public:
  explicit ValueArgument(const HostValue& value);
  void Put(VARIANT& place) const { place = value_.Get(); }
  void WriteBack() const {}

 private:
  ComVariant value_;
};

/// By reference: the caller's number or boolean, in the type that is passed.
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

/// By reference: the caller's text.
class TextReference {
 public:
  explicit TextReference(std::string& text);
  TextReference(const TextReference&) = delete;
  TextReference& operator=(const TextReference&) = delete;
  ~TextReference();
  void Put(VARIANT& place) {
    place.vt = VT_BYREF | VT_BSTR;
    place.pbstrVal = value_.Address();
  }
  void WriteBack() const;

 private:
  std::string& text_;
  const std::string before_ = text_;
  Bstr value_;
};

/// By reference: the object or array in the caller's VARIANT; the callee's changes are ignored.
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

/// Converts a result code to a run-time error number, and back. The platform's own numbers have the
/// facility of controls (0x800A).
std::int32_t ErrorNumberOf(HRESULT result);
HRESULT ResultOf(std::int32_t errorNumber);

}  // namespace rotacasts::win32
