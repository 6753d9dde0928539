// Errors in words for the person who can fix them.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// Error 5 with just these words. They are for the person at the console, so they say what is wrong
/// and what to do.
inline RuntimeError Complaint(std::string words) {
  return {static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall), std::move(words)};
}

}  // namespace rotacasts::host
