// An HTTP server in the host's event loop. It takes whole requests and answers them at once, later,
// or piece by piece.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "daemon_watch.h"

struct MHD_Connection;
struct MHD_Daemon;

namespace rotacasts::host::web {

class Request {
 public:
  virtual ~Request() = default;

  std::string method;
  std::string path;
  std::string address;  // the client's, without the port
  std::string body;
  bool isTooLong = false;  // the body, of which nothing is kept

  // Empty if there is none.
  /// The values of all headers of that name, separated by ", ".
  virtual std::string Header(const char* name) const = 0;
  virtual std::string Cookie(const char* name) const = 0;
  /// A value from the query string.
  virtual std::string Query(const char* name) const = 0;
};

struct Response {
  unsigned status = 200;
  std::string type = "application/json";
  std::string body = {};
  std::vector<std::pair<std::string, std::string>> headers = {};
};

/// An endless answer: server-sent events.
class EventSource {
 public:
  virtual ~EventSource() = default;
  /// What there is to send; empty if nothing. Called only after the previous piece was sent, so
  /// that a slow client costs one piece of memory, not a queue.
  virtual std::string Next() = 0;
  /// Whether the answer has ended.
  virtual bool IsOver() const = 0;
};

/// One request and its answer.
class Exchange {
 public:
  virtual ~Exchange() = default;
  virtual const Request& Asked() const = 0;
  /// Call one of these once, now or in a later turn.
  virtual void Answer(Response response) = 0;
  virtual void AnswerBitByBit(std::unique_ptr<EventSource> source) = 0;
};

/// Limits: 16 KiB for a body and for headers; half a minute for a request to arrive and for its
/// answer to be taken; as many connections as OwnDescriptorShares() says.
class HttpServer {
 public:
  static constexpr std::size_t kLongestBody = std::size_t{16} * 1024;
  static constexpr std::chrono::seconds kLongestRequest{30};
  /// Answers a request. A handler that answers later must hold the pointer weakly, because the
  /// client may go away.
  using Handler = std::function<void(const std::shared_ptr<Exchange>&)>;

  /// Listens at "ADDRESS:PORT"; IPv6 addresses in brackets, port 0 for any. `longest` limits a
  /// request and its answer, except events. Errors: 5 if that is not an address, 57 with the reason
  /// if listening fails. `loop` must outlive it.
  HttpServer(EventLoop& loop, const std::string& address, Handler handler,
             std::chrono::milliseconds longest = kLongestRequest);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  std::uint16_t Port() const;
  /// Asks every open event source for news, some in this turn and the rest in the next ones,
  /// because many pages can show long lists.
  void Pump();
  std::size_t EventSources() const;

 private:
  class Conversation;
  struct Callbacks;
  struct Connection {
    EventLoop::Clock::time_point since = {};          // the start of the request
    std::shared_ptr<Conversation> conversation = {};  // null between requests
    bool sendsEvents = false;                         // so that no time limit holds
  };

  void Start(const std::string& address);
  void Run();
  void PumpSome();
  std::optional<EventLoop::Clock::time_point> NextRun() const;
  /// Cuts off clients that take too long.
  void CutOff();

  EventLoop& loop_;
  const Handler handler_;
  const std::chrono::milliseconds longest_;
  std::map<MHD_Connection*, Connection> connections_;
  EventLoop::Clock::time_point nextCut_;
  MHD_Connection* lastPumped_ = nullptr;
  std::size_t leftToPump_ = 0;  // connections that have not been asked since Pump() was called
  bool mustRun_ = false;        // a connection was resumed, which the library does not signal
  MHD_Daemon* daemon_ = nullptr;
  std::optional<DaemonWatch> watch_;
};

}  // namespace rotacasts::host::web
