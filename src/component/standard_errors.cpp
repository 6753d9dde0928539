// What the standard library calls when it has to throw. Its own functions build their texts with
// strings of an older kind and take names apart for a last word on the screen, which nobody here
// reads: all that would be a quarter of the DLL. Defined here, they are not linked.

#include <bits/functexcept.h>

#include <cstdlib>
#include <new>

#include "base/runtime_error.h"

namespace {

/// Any other exception of the library's would be told as just this error.
[[noreturn]] void RaiseInternalError(const char* what) {
  throw rotacasts::RuntimeError(rotacasts::ErrorNumber::InternalError, what);
}

}  // namespace

namespace std {

void __throw_bad_alloc() {
  throw bad_alloc();
}
void __throw_bad_array_new_length() {
  throw bad_alloc();
}
void __throw_length_error(const char* what) {
  RaiseInternalError(what);
}
void __throw_logic_error(const char* what) {
  RaiseInternalError(what);
}
void __throw_out_of_range(const char* what) {
  RaiseInternalError(what);
}
void __throw_out_of_range_fmt(const char* format, ...) {
  RaiseInternalError(format);
}

}  // namespace std

namespace __gnu_cxx {

void __verbose_terminate_handler() {
  std::abort();
}

}  // namespace __gnu_cxx
