#include "machine/linux/shared_library.h"

#include <dlfcn.h>

namespace rotacasts::host {

SharedLibrary::SharedLibrary(const char* fileName)
    : handle_(::dlopen(fileName, RTLD_NOW | RTLD_LOCAL)) {}

void* SharedLibrary::Function(const char* name) const {
  return ::dlsym(handle_, name);
}

std::string SharedLibrary::Problem() {
  const char* const words = ::dlerror();
  return words != nullptr ? words : "";
}

}  // namespace rotacasts::host
