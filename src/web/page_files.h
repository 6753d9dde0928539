// The page's files, embedded into the program by CMake.
#pragma once

#include <span>
#include <string_view>

namespace rotacasts::host::web {

struct PageFile {
  const char* path;  // of the request
  const char* type;
  std::string_view bytes;
};
extern const std::span<const PageFile> kPageFiles;

}  // namespace rotacasts::host::web
