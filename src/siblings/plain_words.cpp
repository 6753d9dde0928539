#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

/// What helps against most errors of that number; empty if that depends.
std::string_view WayOut(const RuntimeError& error) {
  if (error.Is(ErrorNumber::PermissionDenied)) return "; let this user read and write it";
  if (error.Is(ErrorNumber::DiskFull)) return "; make room there";
  return {};
}

}  // namespace

std::string PlainWords(const RuntimeError& error) {
  const std::string title = std::string(DescriptionOf(error.number)) + ": ";
  const bool isDetailed = error.description.starts_with(title) && error.description != title;
  if (!isDetailed || error.Is(ErrorNumber::InternalError)) return error.description;
  std::string words = error.description.substr(title.size());
  if (words.find(';') == std::string::npos) words += WayOut(error);
  return words;
}

}  // namespace rotacasts::host
