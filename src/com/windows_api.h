// The system's headers, in the only order that compiles.
#pragma once

// clang-format off
#include <windows.h>
#include <objbase.h>
#include <oaidl.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on

#undef ReplaceFile  // a function of the host, which the macro would rename
