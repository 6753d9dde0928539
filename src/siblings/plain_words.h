// Errors in words for people who know nothing of the platform's error numbers.
#pragma once

#include <string>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// What `error` says in detail, without the standard description of its number in front, and with a
/// way out if the detail names none. An error without detail keeps its standard description.
std::string PlainWords(const RuntimeError& error);

}  // namespace rotacasts::host
