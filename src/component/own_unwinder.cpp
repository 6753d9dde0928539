// Keeps the DLL's frames with the unwinder that is linked into it. The compiler's start-up code of
// a module hands them to libgcc_s_dw2-1.dll if another component has brought that into the process;
// the first error raised here would then find no handler and end the host. So for this module that
// DLL is never there: its look-up of modules is linked to the one below.

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
