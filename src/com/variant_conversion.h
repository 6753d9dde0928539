// VARIANTs at the component boundary: to the core's values and back.
#pragma once

#include "base/host_value.h"
#include "com/com_support.h"

namespace rotacasts::win32 {

/// The value of a VARIANT, by-reference and nested ones included. Arrays of one dimension come with
/// their elements under their own indexes from 0 on; kinds that the core does not know are foreign.
HostValue ToHostValue(const VARIANT& value);

/// A VARIANT of the value, owned by the caller. An array of texts becomes an array of strings, any
/// other one an array of VARIANTs.
ComVariant ToComVariant(const HostValue& value);
/// The elements as an array of VARIANTs, whatever they are.
ComVariant ToComVariantArray(const HostValue::Array& elements);

}  // namespace rotacasts::win32
