// An HTTP server in the host's event loop: requests whole, answers at once, later, or bit by bit.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "machine/linux/event_loop.h"

struct MHD_Connection;
struct MHD_Daemon;

namespace rotacasts::host::web {

class Request {
 public:
  virtual ~Request() = default;

  std::string method;
  std::string path;
  std::string address;  // whom it comes from, without the port
  std::string body;
  bool isTooLong = false;  // the body; what was read of it is dropped

  // Empty when there is none.
  virtual std::string Header(const char* name) const = 0;
  virtual std::string Cookie(const char* name) const = 0;
  /// A value after the path's "?".
  virtual std::string Query(const char* name) const = 0;
};

struct Response {
  unsigned status = 200;
  std::string type = "application/json";
  std::string body = {};
  std::vector<std::pair<std::string, std::string>> headers = {};
};

/// An answer that goes on: server-sent events.
class EventSource {
 public:
  virtual ~EventSource() = default;
  /// What there is to send by now; empty when there is nothing. Asked when all that went before has
  /// been taken, so a slow client costs one piece of memory, not a queue.
  virtual std::string Next() = 0;
  /// Whether nothing comes any more.
  virtual bool IsOver() const = 0;
};

/// One request and the answer to it.
class Exchange {
 public:
  virtual ~Exchange() = default;
  virtual const Request& Asked() const = 0;
  /// Once, now or in a later turn.
  virtual void Answer(Response response) = 0;
  virtual void AnswerBitByBit(std::unique_ptr<EventSource> source) = 0;
};

/// A body is 16 KiB at most, a header 16 KiB. A request that has not come, or an answer that has
/// not been taken, after half a minute is cut off; and there are at most 600 connections, 200 of
/// one address.
class HttpServer {
 public:
  static constexpr std::size_t kLongestBody = std::size_t{16} * 1024;
  static constexpr std::chrono::seconds kLongestRequest{30};
  /// Answers a request. Whoever answers later keeps the pointer weakly: the client may be gone.
  using Handler = std::function<void(const std::shared_ptr<Exchange>&)>;

  /// Listens at "ADDRESS:PORT"; an IPv6 address in brackets, port 0 for any. Error 5 for what is no
  /// address, 57 with the reason where nobody can listen there. `longest` is what a request and its
  /// answer may take, events aside.
  HttpServer(EventLoop& loop, const std::string& address, Handler handler,
             std::chrono::milliseconds longest = kLongestRequest);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  std::uint16_t Port() const;
  /// Asks every open event source for what is new.
  void Pump();
  std::size_t EventSources() const { return sources_.size(); }

 private:
  class Conversation;
  struct Callbacks;

  void Start(const std::string& address);
  void Run();
  std::optional<EventLoop::Clock::time_point> NextRun() const;
  /// Cuts off whoever takes too long.
  void CutOff();

  EventLoop& loop_;
  const Handler handler_;
  const std::chrono::milliseconds longest_;
  std::map<MHD_Connection*, EventLoop::Clock::time_point> since_;  // of each request under way
  std::map<MHD_Connection*, std::shared_ptr<Conversation>> conversations_;
  std::map<MHD_Connection*, Conversation*> sources_;
  EventLoop::Clock::time_point nextCut_;
  bool mustRun_ = false;  // a connection goes on, of which the library says nothing
  MHD_Daemon* daemon_ = nullptr;
};

}  // namespace rotacasts::host::web
