// Adding many messages without holding up the broadcasts.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "event_loop.h"
#include "host/server_host.h"

namespace rotacasts::host::web {

/// Adds lists of messages at the end of profiles' lists, one after the other and each in pieces.
/// Every piece is one write and takes one turn of the event loop.
class Additions {
 public:
  /// The messages that one turn adds. With their lines in the log they take a few hundredths of a
  /// second.
  static constexpr std::size_t kPiece = 50;

  /// What became of a list: how many messages were added, what else there is to say about that, and
  /// the error that ended it.
  struct Outcome {
    std::size_t added = 0;
    std::set<std::string> notes;  // each begins with "but"
    std::string problem;          // empty without an error
  };
  using OnEnd = std::function<void(const Outcome&)>;

  /// Both must outlive this.
  Additions(EventLoop& loop, ServerHost& host);

  /// Calls `onEnd` at once for a list of one piece that needs not wait, else in a later turn.
  /// Returns false, without a call, if too many lists are waiting.
  bool Begin(std::int32_t profile, std::vector<std::string> texts, std::string administrator,
             OnEnd onEnd);

 private:
  struct List {
    std::int32_t profile;
    std::vector<std::string> texts;
    std::string administrator;
    OnEnd onEnd;
    std::size_t added = 0;
    std::set<std::string> notes = {};
  };
  void AddPiece();
  void End(const std::string& problem);

  ServerHost& host_;
  std::deque<List> waiting_;
};

}  // namespace rotacasts::host::web
