// Texts: UTF-8 inside the core, Windows-1252 at the game's and the files' edge.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rotacasts {

/// The text without blanks (U+0020, no other) at both ends; a view into `text`.
std::string_view TrimSpaces(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);  // ASCII letters only
bool HasLineBreak(std::string_view text);
/// `text` with every occurrence of `part` replaced, searched from the left, once over.
std::string ReplaceAll(std::string_view text, std::string_view part, std::string_view replacement);

/// Characters (code points, not bytes) of a UTF-8 text.
std::size_t CountCharacters(std::string_view text);
/// The first `count` characters of a UTF-8 text, or all of it if it is shorter.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// The code point that begins at `at`, which moves after it; kInvalidCodePoint, one byte on, where
/// the bytes are no well-formed UTF-8. `at` must lie inside `text`.
char32_t NextCodePoint(std::string_view text, std::size_t& at);
inline constexpr char32_t kInvalidCodePoint = 0xFFFFFFFF;
void AppendCodePoint(std::string& text, char32_t codePoint);
bool IsValidUtf8(std::string_view text);

/// Windows-1252 to UTF-8. The five bytes that the code page leaves undefined stand for the control
/// codes of the same number, as Windows has it, so every byte survives the way there and back.
std::string FromWindows1252(std::string_view bytes);
/// The same for bytes that are no longer needed as they were.
std::string TakeFromWindows1252(std::string bytes);
/// UTF-8 to Windows-1252. Error 5, naming the character, for one that the code page does not hold
/// and for malformed UTF-8.
std::string ToWindows1252(std::string_view text);
/// The same with `substitute` for every character that cannot be converted.
std::string ToWindows1252(std::string_view text, char substitute);

}  // namespace rotacasts
