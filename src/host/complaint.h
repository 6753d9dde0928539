// Errors that are addressed to the person at the console.
#pragma once

#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// Error 5 with nothing but these words, which name the thing and the way out.
inline RuntimeError Complaint(std::string words) {
  return {static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall), std::move(words)};
}

}  // namespace rotacasts::host
