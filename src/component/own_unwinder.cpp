// Keeps the DLL's frames with the unwinder that is linked into it. A module's start-up code
// registers its frames with libgcc_s_dw2-1.dll if another component has loaded that DLL; the first
// error raised here would then find no handler and end the host. This module never finds that DLL
// because its look-up of modules is linked to the function below.

#include <cstring>

#include "com/windows_api.h"

namespace {
using FindModule = HMODULE(WINAPI*)(LPCSTR name);
}

extern "C" {

extern const FindModule theSystemsLookUp __asm__("___real__imp__GetModuleHandleA@4");

static HMODULE WINAPI LookUp(LPCSTR name) {
  const bool isUnwinder = name != nullptr && std::strcmp(name, "libgcc_s_dw2-1.dll") == 0;
  return isUnwinder ? nullptr : theSystemsLookUp(name);
}

extern const FindModule theLookUp __asm__("___wrap__imp__GetModuleHandleA@4");
const FindModule theLookUp = LookUp;

}  // extern "C"
