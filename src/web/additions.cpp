#include "web/additions.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <utility>

#include "siblings/plain_words.h"

namespace rotacasts::host::web {
namespace {

constexpr std::size_t kMostWaiting = 64;
constexpr std::int32_t kEnd = std::numeric_limits<std::int32_t>::max();

}  // namespace

Additions::Additions(EventLoop& loop, ServerHost& host) : host_(host) {
  loop.AddDeadline(
      [this]() -> std::optional<EventLoop::Clock::time_point> {
        if (waiting_.empty()) return std::nullopt;
        return EventLoop::Clock::now();
      },
      [this] { AddPiece(); });
}

bool Additions::Begin(std::int32_t profile, std::vector<std::string> texts,
                      std::string administrator, OnEnd onEnd) {
  if (waiting_.size() >= kMostWaiting) return false;
  waiting_.push_back({profile, std::move(texts), std::move(administrator), std::move(onEnd)});
  if (waiting_.size() == 1) AddPiece();
  return true;
}

void Additions::AddPiece() {
  if (waiting_.empty()) return;
  List& list = waiting_.front();
  const auto begin = list.texts.begin() + static_cast<std::ptrdiff_t>(list.added);
  const std::size_t count = std::min(kPiece, list.texts.size() - list.added);
  try {
    std::istringstream words(host_.InsertMessages(
        list.profile, kEnd, {begin, begin + static_cast<std::ptrdiff_t>(count)},
        list.administrator));
    std::string line;
    std::getline(words, line);  // says how many were added
    while (std::getline(words, line)) list.notes.insert(line);
    list.added += count;
  } catch (...) {
    return End(PlainWords(CurrentRuntimeError()));
  }
  if (list.added == list.texts.size()) End({});
}

void Additions::End(const std::string& problem) {
  const List list = std::move(waiting_.front());
  waiting_.pop_front();
  list.onEnd({list.added, list.notes, problem});
}

}  // namespace rotacasts::host::web
