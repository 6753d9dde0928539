// Base64 by the machine's own library. One implementation per platform.
#pragma once

#include <string>
#include <string_view>

namespace rotacasts::host {

/// On one line, padded.
std::string EncodeBase64(std::string_view bytes);
/// Error 5 for a text that is no padded Base64.
std::string DecodeBase64(std::string_view text);

}  // namespace rotacasts::host
