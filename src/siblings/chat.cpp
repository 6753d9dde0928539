#include "siblings/chat.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/word_list.h"

namespace rotacasts::host {
namespace {

constexpr std::size_t kMostRemembered = 256;
// The most texts of a profile that may wait for earlier ones. If there are more, its program is
// stuck.
constexpr std::size_t kMostWaiting = 8;

RuntimeError NotSent(std::string words) {
  return {static_cast<std::int32_t>(ErrorNumber::DeviceIoError), std::move(words)};
}

}  // namespace

std::string AsPosted(std::string_view text) {
  return ReplaceControls(text, ' ');
}

void Chat::SetProgram(std::int32_t profile, const std::string& program) {
  std::vector<std::string> command = SplitWords(program);
  if (!command.empty()) {
    programs_[profile].program = std::move(command);
  } else if (const auto found = programs_.find(profile); found != programs_.end()) {
    found->second.program.clear();
  }
}

SentText& Chat::Remember(std::int32_t profile, const std::string& text) {
  if (latest_.size() == kMostRemembered) latest_.pop_front();
  latest_.push_back({++lastNumber_, clock_.Now(), profile, text, SentText::Outcome::UnderWay, {}});
  return latest_.back();
}

void Chat::Finish(std::int64_t number, SentText::Outcome outcome, const std::string& reason) {
  const auto found = std::find_if(latest_.begin(), latest_.end(),
                                  [&](const SentText& sent) { return sent.number == number; });
  if (found == latest_.end()) return;  // forgotten: many texts came after it
  found->outcome = outcome;
  found->reason = reason;
  if (onEnd) onEnd(*found);
}

void Chat::Post(std::int32_t profile, std::int32_t port, const std::string& words) {
  const std::string text = AsPosted(words);
  const std::int64_t number = Remember(profile, text).number;
  const auto found = programs_.find(profile);
  if (found == programs_.end() || found->second.program.empty()) {
    try {
      if (port < 1 || port > 0xFFFF) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "profile " + std::to_string(profile) + ": Target " +
                               std::to_string(port) + " is no port; give one from 1 to 65535");
      }
      socket_.Send(static_cast<std::uint16_t>(port), text);
    } catch (const RuntimeError& error) {
      Finish(number, SentText::Outcome::Failed, error.description);
      throw;
    }
    return Finish(number, SentText::Outcome::Sent, "");
  }
  Queue& queue = found->second;
  if (runner_ == nullptr || queue.waiting.size() > kMostWaiting) {
    const std::string problem = runner_ == nullptr
                                    ? "this host starts no programs; give Target in place of Say"
                                    : queue.program[0] + " does not keep up with the messages";
    Finish(number, SentText::Outcome::Failed, problem);
    throw NotSent(problem);
  }
  queue.waiting.push_back(number);
  if (queue.waiting.size() == 1) StartFirst(profile);
}

void Chat::StartFirst(std::int32_t profile) {
  Queue& queue = programs_.at(profile);
  while (!queue.waiting.empty()) {
    const std::int64_t number = queue.waiting.front();
    const auto text = std::find_if(latest_.begin(), latest_.end(),
                                   [&](const SentText& sent) { return sent.number == number; });
    std::vector<std::string> command = queue.program;
    if (text != latest_.end() && !command.empty()) {
      command.push_back(text->text);
      try {
        return runner_->Start(command, [this, profile, number](const ProgramEnd& end) {
          programs_.at(profile).waiting.pop_front();
          Finish(number, end.isDone ? SentText::Outcome::Sent : SentText::Outcome::Failed,
                 end.words);
          StartFirst(profile);
        });
      } catch (const RuntimeError& error) {
        Finish(number, SentText::Outcome::Failed, error.description);
      }
    } else {
      Finish(number, SentText::Outcome::Failed, "Say was taken out of profile.ini");
    }
    queue.waiting.pop_front();
  }
}

}  // namespace rotacasts::host
