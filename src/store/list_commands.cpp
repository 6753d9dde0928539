#include "store/list_commands.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/text.h"
#include "store/insertion.h"

namespace rotacasts {
namespace {

std::vector<std::string> TextsOf(const MessageEntries& entries) {
  std::vector<std::string> texts;
  for (const MessageEntry& entry : entries) texts.push_back(entry.text);
  return texts;
}

/// Moves the text at `from` to `to`; the texts between them make room.
void Move(std::vector<std::string>& texts, std::size_t from, std::size_t to) {
  const auto at = [&](std::size_t place) {
    return texts.begin() + static_cast<std::ptrdiff_t>(place);
  };
  if (from < to) {
    std::rotate(at(from), at(from + 1), at(to + 1));
  } else {
    std::rotate(at(to), at(from), at(from + 1));
  }
}

}  // namespace

std::string ListCommands::Run(std::string_view operation, std::string_view action,
                              std::int32_t index, const ProfileData& PDAT, const Change& change) {
  std::string reply;
  Guard(errors_, {operation, index}, [&](Step& at) {
    at(1);
    MessageFile file = store_.Open(index);
    const auto window = window_.Showing(index);
    at(2);
    const Outcome outcome = change(file);
    at(3);
    window->LoadMessages();
    reply = outcome.isDone ? "1" : "0";
    at(4);
    for (const std::string& value : outcome.logged) log_.Write(PDAT, action, value);
  });
  return reply;
}

std::string ListCommands::ChangeMessage(std::int32_t index, const ProfileData& PDAT,
                                        std::size_t position, const std::string& text) {
  const auto change = [&](MessageFile& file) {
    Outcome outcome;
    file.ReplaceEntries([&](const MessageEntries& entries) {
      if (position >= entries.size() || HasLineBreak(text)) {
        return std::optional<std::vector<std::string>>();
      }
      std::vector<std::string> texts = TextsOf(entries);
      const std::string before = std::exchange(texts[position], text);
      outcome = {true, {before + ", New Message: " + text}};
      return std::optional(std::move(texts));
    });
    return outcome;
  };
  return Run("ChangeMessageRem", admin_action::kChange, index, PDAT, change);
}

std::string ListCommands::PlaceMessage(std::int32_t index, const ProfileData& PDAT,
                                       std::size_t position, std::size_t to) {
  const auto change = [&](MessageFile& file) {
    Outcome outcome;
    file.ReplaceEntries([&](const MessageEntries& entries) {
      if (position >= entries.size()) return std::optional<std::vector<std::string>>();
      std::vector<std::string> texts = TextsOf(entries);
      const std::size_t place = std::min(to, texts.size() - 1);
      outcome = {true, {texts[position] + ", New Position: " + KeyAt(place)}};
      Move(texts, position, place);
      return std::optional(std::move(texts));
    });
    return outcome;
  };
  return Run("PlaceMessageRem", admin_action::kPlace, index, PDAT, change);
}

std::string ListCommands::InsertMessages(std::int32_t index, const ProfileData& PDAT,
                                         std::size_t position,
                                         const std::vector<std::string>& texts) {
  const auto change = [&](MessageFile& file) -> Outcome {
    if (std::ranges::any_of(texts, HasLineBreak)) return {};
    const MessageFile::Hold hold(file);
    Execute(file, StepsToInsert(file.Entries(), position, texts));
    return {true, texts};
  };
  return Run("InsertMessagesRem", admin_action::kAdd, index, PDAT, change);
}

}  // namespace rotacasts
