#include "siblings/chat.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "base/word_list.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

constexpr std::size_t kMostRemembered = 64;  // texts of a profile
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
  std::deque<SentText>& latest = latest_[profile];
  if (latest.size() == kMostRemembered) latest.pop_front();
  latest.push_back({++lastNumber_, clock_.Now(), profile, text, SentText::Outcome::UnderWay, {}});
  return latest.back();
}

const std::deque<SentText>& Chat::LatestOf(std::int32_t profile) const {
  static const std::deque<SentText> kNone;
  const auto found = latest_.find(profile);
  return found != latest_.end() ? found->second : kNone;
}

std::vector<SentText> Chat::Latest() const {
  std::vector<SentText> all;
  for (const auto& [profile, texts] : latest_) all.insert(all.end(), texts.begin(), texts.end());
  std::ranges::sort(all, {}, &SentText::number);
  return all;
}

std::string Chat::FailureOf(std::int32_t profile) const {
  const std::deque<SentText>& texts = LatestOf(profile);
  const auto last = std::find_if(texts.rbegin(), texts.rend(), [](const SentText& sent) {
    return sent.outcome != SentText::Outcome::UnderWay;
  });
  const bool hasFailed = last != texts.rend() && last->outcome == SentText::Outcome::Failed;
  return hasFailed ? last->reason : "";
}

SentText* Chat::Find(std::int32_t profile, std::int64_t number) {
  std::deque<SentText>& texts = latest_[profile];
  const auto found = std::ranges::find(texts, number, &SentText::number);
  return found != texts.end() ? &*found : nullptr;
}

void Chat::Finish(std::int32_t profile, std::int64_t number, SentText::Outcome outcome,
                  const std::string& reason) {
  SentText* const sent = Find(profile, number);
  if (sent == nullptr) return;
  sent->outcome = outcome;
  sent->reason = reason;
  if (onEnd) onEnd(*sent);
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
      Finish(profile, number, SentText::Outcome::Failed, PlainWords(error));
      throw;
    }
    return Finish(profile, number, SentText::Outcome::Sent, "");
  }
  Queue& queue = found->second;
  if (runner_ == nullptr || queue.waiting.size() > kMostWaiting) {
    const std::string problem = runner_ == nullptr
                                    ? "this host starts no programs; give Target in place of Say"
                                    : queue.program[0] + " does not keep up with the messages";
    Finish(profile, number, SentText::Outcome::Failed, problem);
    throw NotSent(problem);
  }
  queue.waiting.push_back(number);
  if (queue.waiting.size() == 1) StartFirst(profile);
}

void Chat::StartFirst(std::int32_t profile) {
  Queue& queue = programs_.at(profile);
  while (!queue.waiting.empty()) {
    const std::int64_t number = queue.waiting.front();
    const SentText* const text = Find(profile, number);
    std::vector<std::string> command = queue.program;
    if (text != nullptr && !command.empty()) {
      command.push_back(text->text);
      try {
        return runner_->Start(command, [this, profile, number](const ProgramEnd& end) {
          programs_.at(profile).waiting.pop_front();
          Finish(profile, number, end.isDone ? SentText::Outcome::Sent : SentText::Outcome::Failed,
                 end.words);
          StartFirst(profile);
        });
      } catch (const RuntimeError& error) {
        Finish(profile, number, SentText::Outcome::Failed, PlainWords(error));
      }
    } else {
      Finish(profile, number, SentText::Outcome::Failed, "Say was taken out of profile.ini");
    }
    queue.waiting.pop_front();
  }
}

}  // namespace rotacasts::host
