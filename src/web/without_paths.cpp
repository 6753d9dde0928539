#include "web/without_paths.h"

#include <string_view>

#include "base/text.h"

namespace rotacasts::host::web {
namespace {

constexpr std::string_view kBefore = " \"'([=";        // what can stand before a path
constexpr std::string_view kBehind = " \"')],;:\n\t";  // and what ends it

}  // namespace

std::string WithoutFolder(const std::string& words, const std::string& hostFolder) {
  std::string text = ReplaceAll(words, hostFolder + "/", "");
  text = ReplaceAll(text, hostFolder + "\\", "");
  return ReplaceAll(text, hostFolder, "the host folder");
}

std::string WithoutPaths(const std::string& words, const std::string& hostFolder) {
  const std::string text = WithoutFolder(words, hostFolder);
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const bool isPath = text[at] == '/' && (at == 0 || kBefore.find(text[at - 1]) != kBefore.npos);
    const std::size_t end =
        isPath ? std::min(text.find_first_of(kBehind, at), text.size()) : at + 1;
    const std::size_t name = isPath ? text.find_last_of("/\\", end - 1) + 1 : at;
    result.append(text, name, end - name);
    at = end;
  }
  return result;
}

}  // namespace rotacasts::host::web
