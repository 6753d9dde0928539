// The window messages that the plugin sends to its controls, with the platform's numbers.
#pragma once

#include <cstdint>

namespace rotacasts::forms {

inline constexpr std::uint32_t kWmCut = 0x0300;
inline constexpr std::uint32_t kWmCopy = 0x0301;
inline constexpr std::uint32_t kWmPaste = 0x0302;
/// wParam: whether it can be undone; lParam: the replacement, a NUL-terminated ANSI string.
inline constexpr std::uint32_t kEmReplaceSel = 0x00C2;
/// wParam: first character; lParam: the one after the last, -1 for the end of the text.
inline constexpr std::uint32_t kEmSetSel = 0x00B1;
/// lParam: y * 65536 + x in pixels. The answer is the nearest row; bit 16 is set when the point
/// lies on no row.
inline constexpr std::uint32_t kLbItemFromPoint = 0x01A9;
inline constexpr std::intptr_t kLbOutsideItems = 0x10000;
/// The uppermost row in sight.
inline constexpr std::uint32_t kLbGetTopIndex = 0x018E;
/// wParam: the row to scroll to; one beyond the end scrolls as far as it goes.
inline constexpr std::uint32_t kLbSetTopIndex = 0x0197;

}  // namespace rotacasts::forms
