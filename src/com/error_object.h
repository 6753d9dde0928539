// A run-time error as a COM object, for a component that takes one.
#pragma once

#include "base/runtime_error.h"
#include "com/com_support.h"

namespace rotacasts::win32 {

/// An object with the properties Number (the default), Source, Description, HelpFile, HelpContext
/// and LastDllError, like the error object of a Basic-like language.
ComPtr<IDispatch> MakeErrorObject(const RuntimeError& error);

}  // namespace rotacasts::win32
