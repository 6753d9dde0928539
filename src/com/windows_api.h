// The system's headers, in the one order in which they can be read.
#pragma once

// clang-format off
#include <windows.h>
#include <objbase.h>
#include <oaidl.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on
