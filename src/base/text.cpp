#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts {
namespace {

/// The code points of the Windows-1252 bytes 0x80 to 0x9F; every other byte stands for itself.
/// Source: the code page's definition by its vendor (best-fit table cp1252).
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Checks eight bytes at a time because nearly every text passes through here.
bool IsAscii(std::string_view text) {
  std::uint64_t seen = 0;
  for (std::uint64_t word = 0; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
    std::memcpy(&word, text.data(), sizeof word);
    seen |= word;
  }
  for (const char letter : text) seen |= static_cast<unsigned char>(letter);
  return (seen & 0x8080808080808080) == 0;
}

bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The length in bytes of the control character that begins at `at`; 0 if none does.
std::size_t ControlLength(std::string_view text, std::size_t at) {
  if (IsControl(text[at])) return 1;
  const bool isHigh = text[at] == '\xC2' && at + 1 < text.size() &&
                      (static_cast<unsigned char>(text[at + 1]) & 0xE0) == 0x80;
  return isHigh ? 2 : 0;
}

char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// The code point's byte, or -1 if the code page lacks it.
int Windows1252Byte(char32_t codePoint) {
  if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) {
    return static_cast<int>(codePoint);
  }
  const auto found = std::find(kHighControls.begin(), kHighControls.end(), codePoint);
  if (found == kHighControls.end()) return -1;
  return 0x80 + static_cast<int>(std::distance(kHighControls.begin(), found));
}

[[noreturn]] void RaiseNotInCodePage(char32_t codePoint) {
  if (codePoint == kInvalidCodePoint) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "the text is not well-formed UTF-8");
  }
  char name[16];
  std::snprintf(name, sizeof name, "(U+%04X)", static_cast<unsigned>(codePoint));
  std::string detail = "the character ";
  AppendCodePoint(detail, codePoint);
  throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                     detail + " " + name + " is not in Windows-1252; use another one");
}

/// Converts UTF-8 to Windows-1252; `otherwise(codePoint)` supplies the byte for a character that
/// the code page lacks.
template <class Otherwise>
std::string Encode(std::string_view text, Otherwise otherwise) {
  if (IsAscii(text)) return std::string(text);
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t codePoint = NextCodePoint(text, at);
    const int byte = codePoint == kInvalidCodePoint ? -1 : Windows1252Byte(codePoint);
    bytes += byte < 0 ? otherwise(codePoint) : static_cast<char>(byte);
  }
  return bytes;
}

}  // namespace

std::string_view TrimSpaces(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), LowerAscii);
  return lower;
}

std::optional<std::int32_t> WholeNumber(std::string_view text) {
  std::int32_t number = 0;
  const char* const textEnd = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), textEnd, number);
  return error == std::errc() && end == textEnd ? std::optional(number) : std::nullopt;
}

bool HasLineBreak(std::string_view text) {
  return text.find('\n') != text.npos || text.find('\r') != text.npos;
}

bool HasControl(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (ControlLength(text, at) != 0) return true;
  }
  return false;
}

std::string ReplaceControls(std::string_view text, char substitute) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = ControlLength(text, at);
    result += length != 0 ? substitute : text[at];
    at += std::max<std::size_t>(length, 1);
  }
  return result;
}

std::string ReplaceAll(std::string_view text, std::string_view part, std::string_view replacement) {
  std::string result;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part)) {
    result.append(text.substr(0, at)).append(replacement);
    text.remove_prefix(at + part.size());
  }
  return result.append(text);
}

std::size_t CountCharacters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !IsContinuation(byte); }));
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  if (text.size() <= count) return text;  // the usual case
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!IsContinuation(text[at]) && count-- == 0) return text.substr(0, at);
  }
  return text;
}

char32_t NextCodePoint(std::string_view text, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  if (lead < 0xC0 || lead > 0xF4) return kInvalidCodePoint;
  char32_t codePoint = lead & (0x3FU >> more);
  std::size_t next = at;
  for (int i = 0; i < more; ++i, ++next) {
    if (next >= text.size() || !IsContinuation(text[next])) return kInvalidCodePoint;
    codePoint = codePoint << 6 | (static_cast<unsigned char>(text[next]) & 0x3FU);
  }
  const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  if (codePoint < kSmallest[more] || codePoint > 0x10FFFF || surrogate) return kInvalidCodePoint;
  at = next;
  return codePoint;
}

void AppendCodePoint(std::string& text, char32_t codePoint) {
  const auto tail = [&](int shift) {
    text += static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
  };
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text += static_cast<char>(0xC0 | codePoint >> 6);
    tail(0);
  } else if (codePoint < 0x10000) {
    text += static_cast<char>(0xE0 | codePoint >> 12);
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | codePoint >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (NextCodePoint(text, at) == kInvalidCodePoint) return false;
  }
  return true;
}

std::string FromWindows1252(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char letter : bytes) {
    const auto byte = static_cast<unsigned char>(letter);
    AppendCodePoint(text, byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80] : byte);
  }
  return text;
}

std::string TakeFromWindows1252(std::string bytes) {
  return IsAscii(bytes) ? std::move(bytes) : FromWindows1252(bytes);
}

std::string ToWindows1252(std::string_view text) {
  return Encode(text, [](char32_t codePoint) -> char { RaiseNotInCodePage(codePoint); });
}

std::string ToWindows1252(std::string_view text, char substitute) {
  return Encode(text, [substitute](char32_t) { return substitute; });
}

}  // namespace rotacasts
