#include "host/troubles.h"

#include <utility>

namespace rotacasts::host {
namespace {

/// "3 min 20 s"
std::string Length(Troubles::Clock::duration length) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(length).count();
  std::string rest = std::to_string(seconds % 60) + " s";
  if (seconds < 60) return rest;
  const std::string minutes = std::to_string(seconds / 60 % 60) + " min";
  if (seconds < 3600) return minutes + " " + rest;
  return std::to_string(seconds / 3600) + " h " + minutes;
}

}  // namespace

std::string WordsOf(const RuntimeError& error, const std::string& procedure) {
  const bool isBare =
      error.description == RuntimeError(static_cast<ErrorNumber>(error.number)).description;
  if (!isBare) return error.description;
  return error.description + " (error " + std::to_string(error.number) + " in " + procedure + ")";
}

std::string Named(const std::string& label, const std::string& words) {
  return words.find(label) == words.npos ? label + ": " + words : words;
}

void Troubles::Met(std::int32_t profile, const std::string& words, Clock::time_point now) {
  Trouble& trouble = open_.try_emplace(profile, Trouble{now, 0, {}, false}).first->second;
  if (!std::exchange(trouble.isInThisTick, true)) ++trouble.ticks;
  if (trouble.told.insert(words).second) Once(words);
}

bool Troubles::IsOld(std::int32_t profile, const std::string& words) const {
  const auto found = open_.find(profile);
  return found != open_.end() && found->second.told.contains(words);
}

void Troubles::TickTriedNothing(std::int32_t profile) {
  const auto found = open_.find(profile);
  if (found != open_.end()) found->second.isInThisTick = false;
}

std::optional<std::string> Troubles::TickEnded(std::int32_t profile, const std::string& label,
                                               Clock::time_point now) {
  const auto found = open_.find(profile);
  if (found == open_.end() || std::exchange(found->second.isInThisTick, false)) return std::nullopt;
  const Trouble trouble = found->second;
  open_.erase(found);
  const std::string words = label + ": all is well again after " + Length(now - trouble.since) +
                            "; ticks that failed: " + std::to_string(trouble.ticks);
  Once(words);
  return words;
}

}  // namespace rotacasts::host
