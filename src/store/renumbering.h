// Giving the messages of a file new keys or new places without losing one on the way.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "services/guard.h"
#include "store/message_section.h"

namespace rotacasts {

/// The key of a new message after these lines: one more than the number of lines or, in a
/// hand-edited section, than the highest key, so that no text is overwritten. After the highest
/// number there is, any that is unused.
std::string NextKey(const std::vector<std::string>& lines);

/// One write to the section "Messages".
struct SectionStep {
  std::string key;
  std::optional<std::string> text;  // none: the key is removed
};

/// A change of the section as the writes that it takes, in order. No text that the section holds
/// before and after the change is ever absent, whichever write is the last.
struct SectionSteps {
  std::vector<SectionStep> steps;
  /// Puts the old texts back from wherever the steps have ended. Empty if the keys were not dense;
  /// then each text stands under some key.
  std::vector<SectionStep> wayBack;
};

/// Whether the keys are 1 to n in their order, as the plugin itself numbers messages.
bool HasDenseKeys(const MessageEntries& entries);

/// The steps that renumber these entries, the whole section, in their order. Blank ones go.
SectionSteps StepsToRenumber(MessageEntries entries);

/// The steps from these entries, the whole section, to these texts under the keys 1 to n.
SectionSteps StepsToReplace(MessageEntries entries, std::vector<std::string> texts);

/// The steps that exchange the texts of two entries of the section with these lines.
SectionSteps StepsToExchange(const MessageEntry& first, const MessageEntry& second,
                             const std::vector<std::string>& lines);

/// Takes the steps; `at` gets the line that the renumbering has for each. Raises what fails, after
/// the way back as far as that succeeds.
void Execute(MessageSection& section, SectionSteps change, Step* at = nullptr);

}  // namespace rotacasts
