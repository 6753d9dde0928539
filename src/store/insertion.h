// Inserting messages into a file without losing one on the way.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "store/renumbering.h"

namespace rotacasts {

/// The steps that insert these texts before the entry at `position`, from 0, or behind the last
/// one. `entries` are the whole section; with keys other than 1 to n they are renumbered as well.
SectionSteps StepsToInsert(MessageEntries entries, std::size_t position,
                           const std::vector<std::string>& texts);

}  // namespace rotacasts
