// Conversion of VARIANTs to the core's values and back.
#pragma once

#include "base/host_value.h"
#include "com/com_support.h"

namespace rotacasts::win32 {

/// Converts a VARIANT, also a by-reference or nested one. One-dimensional arrays keep their indexes
/// from 0 up. A kind that the core does not know becomes `Foreign`.
HostValue ToHostValue(const VARIANT& value);
/// The value's text. Errors: 13 for a value that has none.
std::string TextOf(const ComVariant& value);

/// Converts a value to a VARIANT that the caller owns. An array of texts becomes an array of
/// strings, any other an array of VARIANTs.
ComVariant ToComVariant(const HostValue& value);
/// Converts the elements to an array of VARIANTs, even if all are texts.
ComVariant ToComVariantArray(const HostValue::Array& elements);

}  // namespace rotacasts::win32
