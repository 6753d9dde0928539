// Base64, from a library of the platform. One implementation per platform.
#pragma once

#include <string>
#include <string_view>

namespace rotacasts::host {

/// Encodes on one line, with padding.
std::string EncodeBase64(std::string_view bytes);
/// Decodes. Errors: 5 if the text is not padded Base64.
std::string DecodeBase64(std::string_view text);

}  // namespace rotacasts::host
