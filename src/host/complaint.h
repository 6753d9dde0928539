// What is wrong, in words for the person who can mend it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// Error 5 with nothing but these words, which are for the person at the console: they name the
/// thing and the way out.
inline RuntimeError Complaint(std::string words) {
  return {static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall), std::move(words)};
}

}  // namespace rotacasts::host
