#include "base/word_list.h"

#include <algorithm>

namespace rotacasts {

std::string Join(const std::vector<std::string>& texts, std::string_view separator) {
  std::string joined;
  for (const std::string& text : texts) {
    if (&text != &texts.front()) joined += separator;
    joined += text;
  }
  return joined;
}

std::vector<std::string> SplitWords(std::string_view text) {
  constexpr std::string_view kWhite = " \t\r\n\v\f";
  std::vector<std::string> words;
  for (std::size_t at = 0; (at = text.find_first_not_of(kWhite, at)) != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(kWhite, at), text.size());
    words.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return words;
}

}  // namespace rotacasts
