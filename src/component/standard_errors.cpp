// The functions with which the standard library throws. Its own versions would make up a quarter of
// the DLL: they build texts with the old string class and decode type names for a message that
// nobody sees. Because these are defined, those are not linked.

#include <bits/functexcept.h>

#include <cstdlib>
#include <new>

#include "base/runtime_error.h"

namespace {

/// Any other exception of the library would be reported as this error anyway.
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
