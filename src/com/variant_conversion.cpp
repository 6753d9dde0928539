#include "com/variant_conversion.h"

#include <algorithm>

#include "base/conversions.h"

namespace rotacasts::win32 {
namespace {

// Limits nesting because a by-reference VARIANT can refer to itself.
constexpr int kDeepest = 8;

HostValue From(const VARIANT& value, int depth);

/// A 32-bit integer if the number fits, else a double.
HostValue FromWhole(std::int64_t number) {
  if (number >= INT32_MIN && number <= INT32_MAX) return static_cast<std::int32_t>(number);
  return static_cast<double>(number);
}

HostValue FromArray(SAFEARRAY* array, VARTYPE kind, int depth) {
  LONG lower = 0;
  LONG upper = -1;
  if (array == nullptr || ::SafeArrayGetDim(array) != 1 ||
      FAILED(::SafeArrayGetLBound(array, 1, &lower)) ||
      FAILED(::SafeArrayGetUBound(array, 1, &upper))) {
    return HostValue::Foreign{};
  }
  const LONG before = std::max<LONG>(lower, 0);
  HostValue::Array elements(static_cast<std::size_t>(std::min<LONG>(before, upper + 1)),
                            HostValue(HostValue::OutOfBounds{}));
  void* data = nullptr;
  if (upper < before || FAILED(::SafeArrayAccessData(array, &data))) return elements;
  auto* element =
      static_cast<char*>(data) + (before - lower) * static_cast<LONG>(array->cbElements);
  for (LONG index = before; index <= upper; ++index, element += array->cbElements) {
    VARIANT reference;  // refers to the element in the array
    ::VariantInit(&reference);
    reference.vt = static_cast<VARTYPE>(kind | VT_BYREF);
    reference.byref = element;
    elements.push_back(From(reference, depth + 1));
  }
  ::SafeArrayUnaccessData(array);
  return elements;
}

/// Lets the system convert a kind that it can express as a number or a text.
HostValue FromConverted(const VARIANT& value, VARTYPE wanted) {
  ComVariant converted;
  if (FAILED(::VariantChangeType(converted.Address(), const_cast<VARIANT*>(&value), 0, wanted)))
    return HostValue::Foreign{};
  if (wanted == VT_R8) return converted.Get().dblVal;
  return FromBstr(converted.Get().bstrVal);
}

HostValue FromNumber(const VARIANT& value) {
  switch (value.vt) {
    case VT_I1:
      return std::int16_t{value.cVal};
    case VT_UI1:
      return std::int16_t{value.bVal};
    case VT_I2:
      return std::int16_t{value.iVal};
    case VT_UI2:
      return std::int32_t{value.uiVal};
    case VT_I4:
    case VT_INT:
      return FromWhole(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return FromWhole(value.ulVal);
    case VT_I8:
      return FromWhole(value.llVal);
    case VT_R4:
      return value.fltVal;
    case VT_R8:
      return value.dblVal;
    case VT_UI8:
    case VT_CY:
    case VT_DECIMAL:
      return FromConverted(value, VT_R8);
    default:
      return HostValue::Foreign{};
  }
}

HostValue FromPlain(const VARIANT& value, int depth) {
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return HostValue::Null{};
    case VT_ERROR:
      if (value.scode == DISP_E_PARAMNOTFOUND) return HostValue::Missing{};
      return HostValue::Foreign{};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_BSTR:
      return FromBstr(value.bstrVal);
    case VT_DATE:
      return FromConverted(value, VT_BSTR);
    default:
      if ((value.vt & VT_ARRAY) != 0) {
        return FromArray(value.parray, static_cast<VARTYPE>(value.vt & ~VT_ARRAY), depth);
      }
      return FromNumber(value);
  }
}

/// Copies the number of this kind that a by-reference VARIANT refers to; false if it is none.
bool CopyNumber(const VARIANT& value, VARTYPE kind, VARIANT& target) {
  switch (kind) {
    case VT_I1:
    case VT_UI1:
      target.bVal = *value.pbVal;
      return true;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      target.iVal = *value.piVal;
      return true;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      target.lVal = *value.plVal;
      return true;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      target.llVal = *value.pllVal;
      return true;
    default:
      return false;
  }
}

/// The value that a by-reference VARIANT refers to.
HostValue FromReference(const VARIANT& value, int depth) {
  if (value.byref == nullptr) return HostValue::Foreign{};
  const auto kind = static_cast<VARTYPE>(value.vt & ~VT_BYREF);
  if (kind == VT_VARIANT) return From(*value.pvarVal, depth + 1);
  VARIANT target;
  ::VariantInit(&target);
  if (kind == VT_DECIMAL) {
    target.decVal = *value.pdecVal;
  } else if ((kind & VT_ARRAY) != 0 || kind == VT_BSTR) {
    target.byref = *static_cast<void**>(value.byref);
  } else if (!CopyNumber(value, kind, target)) {
    return HostValue::Foreign{};
  }
  target.vt = kind;
  return FromPlain(target, depth);
}

HostValue From(const VARIANT& value, int depth) {
  if (depth > kDeepest) return HostValue::Foreign{};
  return (value.vt & VT_BYREF) != 0 ? FromReference(value, depth) : FromPlain(value, depth);
}

VARIANT OfKind(VARTYPE kind) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = kind;
  return value;
}

/// Makes an array of this kind; `fill(slot, element)` sets each element.
template <class Element, class Fill>
ComVariant MakeArray(const HostValue::Array& elements, VARTYPE kind, Fill fill) {
  ComVariant result;
  SAFEARRAY* array = ::SafeArrayCreateVector(kind, 0, static_cast<ULONG>(elements.size()));
  if (array == nullptr) throw RuntimeError(ErrorNumber::OutOfMemory);
  result.Address()->vt = static_cast<VARTYPE>(VT_ARRAY | kind);
  result.Address()->parray = array;
  auto* slots = static_cast<Element*>(array->pvData);
  for (std::size_t i = 0; i < elements.size(); ++i) fill(slots[i], elements[i]);
  return result;
}

struct Converter {
  ComVariant operator()(std::monostate) const { return {}; }
  ComVariant operator()(HostValue::Missing) const {
    VARIANT value = OfKind(VT_ERROR);
    value.scode = DISP_E_PARAMNOTFOUND;
    return ComVariant(value);
  }
  ComVariant operator()(HostValue::Null) const { return ComVariant(OfKind(VT_NULL)); }
  ComVariant operator()(bool truth) const {
    VARIANT value = OfKind(VT_BOOL);
    value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return ComVariant(value);
  }
  ComVariant operator()(std::int16_t number) const {
    VARIANT value = OfKind(VT_I2);
    value.iVal = number;
    return ComVariant(value);
  }
  ComVariant operator()(std::int32_t number) const {
    VARIANT value = OfKind(VT_I4);
    value.lVal = number;
    return ComVariant(value);
  }
  ComVariant operator()(float number) const {
    VARIANT value = OfKind(VT_R4);
    value.fltVal = number;
    return ComVariant(value);
  }
  ComVariant operator()(double number) const {
    VARIANT value = OfKind(VT_R8);
    value.dblVal = number;
    return ComVariant(value);
  }
  ComVariant operator()(const std::string& text) const {
    Bstr copy(text);
    VARIANT value = OfKind(VT_BSTR);
    value.bstrVal = copy.Release();
    return ComVariant(value);
  }
  ComVariant operator()(const HostValue::Array& elements) const {
    const bool textsOnly =
        std::all_of(elements.begin(), elements.end(), [](const HostValue& element) {
          return std::holds_alternative<std::string>(element.Get());
        });
    if (!textsOnly || elements.empty()) return ToComVariantArray(elements);
    return MakeArray<BSTR>(elements, VT_BSTR, [](BSTR& slot, const HostValue& element) {
      slot = Bstr(std::get<std::string>(element.Get())).Release();
    });
  }
  ComVariant operator()(HostValue::Foreign) const { return {}; }
  ComVariant operator()(HostValue::OutOfBounds) const { return {}; }
};

}  // namespace

HostValue ToHostValue(const VARIANT& value) {
  return From(value, 0);
}

std::string TextOf(const ComVariant& value) {
  return ToText(ToHostValue(value.Get()));
}

ComVariant ToComVariant(const HostValue& value) {
  return std::visit(Converter{}, value.Get());
}

ComVariant ToComVariantArray(const HostValue::Array& elements) {
  return MakeArray<VARIANT>(elements, VT_VARIANT, [](VARIANT& slot, const HostValue& element) {
    slot = ToComVariant(element).Release();
  });
}

}  // namespace rotacasts::win32
