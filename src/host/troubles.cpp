#include "host/troubles.h"

#include <iterator>
#include <utility>

#include "siblings/game_processes.h"
#include "siblings/plain_words.h"

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

std::string DescribeError(const std::string& label, const RuntimeError& error,
                          const std::string& procedure) {
  if (IsServerError(error)) return error.description;  // it names the profile
  std::string words = label + ": " + PlainWords(error);
  if (error.isGeneric)
    words += " (error " + std::to_string(error.number) + " in " + procedure + ")";
  return words;
}

void Troubles::ReportStarted(const Work& work, const std::string& words, Clock::time_point now,
                             std::int32_t part) {
  Trouble& trouble = open_.try_emplace(work, Trouble{now, 0, {}, {}, {}, false}).first->second;
  trouble.parts[part] = true;
  if (!std::exchange(trouble.isInThisRun, true)) ++trouble.runs;
  trouble.latest = words;
  if (trouble.printed.insert(words).second) Print(words);
}

std::string Troubles::WordsOn(const Work& work) const {
  const auto found = open_.find(work);
  return found != open_.end() ? found->second.latest : "";
}

bool Troubles::IsReported(const Work& work, const std::string& words) const {
  const auto found = open_.find(work);
  return found != open_.end() && found->second.printed.contains(words);
}

void Troubles::EndUntried(const Work& work) {
  const auto found = open_.find(work);
  if (found == open_.end()) return;
  found->second.isInThisRun = false;
  for (auto& [part, isInThisRun] : found->second.parts) isInThisRun = false;
}

std::optional<std::string> Troubles::ReportEnded(const Work& work, const std::string& label,
                                                 Clock::time_point now,
                                                 const HasSucceeded& hasSucceeded) {
  const auto found = open_.find(work);
  if (found == open_.end()) return std::nullopt;
  found->second.isInThisRun = false;
  std::map<std::int32_t, bool>& parts = found->second.parts;
  for (auto part = parts.begin(); part != parts.end();) {
    const bool hasFailed = std::exchange(part->second, false);
    const bool isOver = !hasFailed && (!hasSucceeded || hasSucceeded(part->first));
    part = isOver ? parts.erase(part) : std::next(part);
  }
  if (!parts.empty()) return std::nullopt;
  const Trouble trouble = found->second;
  open_.erase(found);
  const std::string words = label + ": all is well again after " + Length(now - trouble.since) +
                            "; ticks that failed: " + std::to_string(trouble.runs);
  Print(words);
  return words;
}

}  // namespace rotacasts::host
