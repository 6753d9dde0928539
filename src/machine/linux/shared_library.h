// A shared library that is loaded by its file name while the program runs.
#pragma once

#include <string>

namespace rotacasts::host {

class SharedLibrary {
 public:
  /// Loads the library for the rest of the program's life. See IsLoaded.
  explicit SharedLibrary(const char* fileName);

  bool IsLoaded() const { return handle_ != nullptr; }
  /// The function of that name; null if the library has none. Requires: it is loaded.
  void* Function(const char* name) const;
  /// Why the last call on this thread that failed did.
  static std::string Problem();

 private:
  void* const handle_;
};

}  // namespace rotacasts::host
