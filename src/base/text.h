// Text helpers. Texts are UTF-8 inside the core and Windows-1252 in files and game memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rotacasts {

/// `text` without spaces (U+0020 only) at both ends. The result is a view into `text`.
std::string_view TrimSpaces(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);  // ASCII letters only
/// `text` with its ASCII letters in lower case.
std::string LowerCase(std::string_view text);
/// The number that the text spells in decimal digits, with "-" before a negative one and nothing
/// else; none for any other text and for a number beyond 32 bits.
std::optional<std::int32_t> WholeNumber(std::string_view text);
bool HasLineBreak(std::string_view text);

/// Whether the byte is a control character by itself: U+0000 to U+001F or U+007F.
constexpr bool IsControl(char byte) {
  return (byte >= 0 && byte < ' ') || byte == 0x7F;
}
/// Whether a UTF-8 text holds a control character: one of those, or U+0080 to U+009F.
bool HasControl(std::string_view text);
/// The UTF-8 text with `substitute` in place of each control character.
std::string ReplaceControls(std::string_view text, char substitute);

/// `text` with every occurrence of `part` replaced, searched from the left, once over.
std::string ReplaceAll(std::string_view text, std::string_view part, std::string_view replacement);

/// Characters (code points, not bytes) of a UTF-8 text.
std::size_t CountCharacters(std::string_view text);
/// The first `count` characters of a UTF-8 text, or all of a shorter one; a view into `text`.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// Reads the code point at `at` and moves `at` past it. Malformed UTF-8 gives kInvalidCodePoint and
/// moves `at` by one byte. Requires: `at` lies inside `text`.
char32_t NextCodePoint(std::string_view text, std::size_t& at);
inline constexpr char32_t kInvalidCodePoint = 0xFFFFFFFF;
void AppendCodePoint(std::string& text, char32_t codePoint);
bool IsValidUtf8(std::string_view text);

/// Converts Windows-1252 to UTF-8. The five undefined bytes become the control codes of the same
/// number, as on Windows, so every byte survives a round trip.
std::string FromWindows1252(std::string_view bytes);
/// Like FromWindows1252, but reuses `bytes` if they are ASCII.
std::string TakeFromWindows1252(std::string bytes);
/// Converts UTF-8 to Windows-1252. Errors: 5 for a character that the code page lacks (the
/// description names it) and for malformed UTF-8.
std::string ToWindows1252(std::string_view text);
/// Like the other, but writes `substitute` for every character that cannot be converted.
std::string ToWindows1252(std::string_view text, char substitute);

}  // namespace rotacasts
