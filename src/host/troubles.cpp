#include "host/troubles.h"

namespace rotacasts::host {
namespace {

/// "3 min 20 s"
std::string Length(Troubles::Clock::duration length) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(length).count();
  const std::string rest = std::to_string(seconds % 60) + " s";
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
  const auto [place, isNew] = open_[profile].try_emplace(words, Trouble{now});
  if (isNew) Once(words);
  place->second.ticks += isNew || !place->second.isInThisTick ? 1 : 0;
  place->second.isInThisTick = true;
}

bool Troubles::IsOld(std::int32_t profile, const std::string& words) const {
  const auto found = open_.find(profile);
  return found != open_.end() && found->second.contains(words);
}

std::vector<std::string> Troubles::TickEnded(std::int32_t profile, const std::string& label,
                                             Clock::time_point now) {
  std::vector<std::string> ended;
  const auto found = open_.find(profile);
  if (found == open_.end()) return ended;
  for (auto place = found->second.begin(); place != found->second.end();) {
    Trouble& trouble = place->second;
    if (trouble.isInThisTick) {
      trouble.isInThisTick = false;
      ++place;
      continue;
    }
    const std::string times =
        trouble.ticks == 1 ? "once" : std::to_string(trouble.ticks) + " times";
    const bool isNamed = place->first.starts_with(label + ": ");
    ended.push_back("over after " + Length(now - trouble.since) + ", met " + times + ": " +
                    place->first.substr(isNamed ? label.size() + 2 : 0));
    Once(label + ": " + ended.back());
    place = found->second.erase(place);
  }
  if (found->second.empty()) open_.erase(found);
  return ended;
}

}  // namespace rotacasts::host
