#include "siblings/win32/call_member.h"

#include "base/conversions.h"
#include "com/late_bound.h"

namespace rotacasts::host {
namespace {

/// The VARIANT that the argument refers to, or the argument itself.
const VARIANT& Innermost(const VARIANT& argument) {
  const bool refers = argument.vt == (VT_BYREF | VT_VARIANT) && argument.pvarVal != nullptr;
  return refers ? *argument.pvarVal : argument;
}

/// Whether the argument is null (a null value or a null string), as opposed to an empty text.
bool IsNullText(const VARIANT& argument) {
  const VARIANT& inner = Innermost(argument);
  if (inner.vt == (VT_BYREF | VT_BSTR)) return *inner.pbstrVal == nullptr;
  return inner.vt == VT_NULL || (inner.vt == VT_BSTR && inner.bstrVal == nullptr);
}

win32::ComPtr<IDispatch> ObjectOf(const VARIANT& argument) {
  const VARIANT& inner = Innermost(argument);
  IDispatch* object = inner.vt == VT_DISPATCH                ? inner.pdispVal
                      : inner.vt == (VT_BYREF | VT_DISPATCH) ? *inner.ppdispVal
                                                             : nullptr;
  if (object == nullptr) throw RuntimeError(ErrorNumber::TypeMismatch);
  object->AddRef();
  return win32::ComPtr<IDispatch>::Take(object);
}

}  // namespace

void ReadArgument(const VARIANT& argument, std::int16_t& value) {
  value = ToInteger(win32::ToHostValue(argument));
}

void ReadArgument(const VARIANT& argument, std::int32_t& value) {
  // A short cut for the two kinds of every memory read.
  value = argument.vt == VT_I4                ? argument.lVal
          : argument.vt == (VT_BYREF | VT_I4) ? *argument.plVal
                                              : ToLong(win32::ToHostValue(argument));
}

void ReadArgument(const VARIANT& argument, bool& value) {
  value = ToBoolean(win32::ToHostValue(argument));
}

void ReadArgument(const VARIANT& argument, std::string& value) {
  value = ToText(win32::ToHostValue(argument));
}

void ReadArgument(const VARIANT& argument, std::optional<std::string>& value) {
  value.reset();
  if (!IsNullText(argument)) value = ToText(win32::ToHostValue(argument));
}

void ReadArgument(const VARIANT& argument, UtilityComponent::Key& value) {
  if (IsNullText(argument)) {
    value = UtilityComponent::kNullKey;
    return;
  }
  const HostValue key = win32::ToHostValue(argument);
  if (std::holds_alternative<std::string>(key.Get())) {
    value = ToText(key);
  } else {
    value = ToLong(key);
  }
}

void ReadArgument(const VARIANT& argument, HostValue& value) {
  value = win32::ToHostValue(argument);
}

void ReadArgument(const VARIANT& argument, RuntimeError& value) {
  const win32::LateBound error(ObjectOf(argument));
  value.number = ToLong(win32::ToHostValue(win32::Member(error, "Number")().Get()));
  value.description = ToText(win32::ToHostValue(win32::Member(error, "Description")().Get()));
}

void GiveBack(const VARIANT& argument, const HostValue& value) {
  if ((argument.vt & VT_BYREF) == 0 || argument.byref == nullptr) return;
  switch (argument.vt & ~VT_BYREF) {
    case VT_I2:
      *argument.piVal = ToInteger(value);
      return;
    case VT_I4:
      *argument.plVal = ToLong(value);
      return;
    case VT_BOOL:
      *argument.pboolVal = ToBoolean(value) ? VARIANT_TRUE : VARIANT_FALSE;
      return;
    case VT_BSTR: {
      win32::Bstr text(ToText(value));
      std::swap(*text.Address(), *argument.pbstrVal);
      return;
    }
    case VT_VARIANT: {
      win32::ComVariant replacement = win32::ToComVariant(value);
      std::swap(*replacement.Address(), *argument.pvarVal);
      return;
    }
    default:
      return;
  }
}

}  // namespace rotacasts::host
