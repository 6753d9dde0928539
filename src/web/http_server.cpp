#include "web/http_server.h"

#include <algorithm>
#include <cstring>

#include "base/runtime_error.h"
#include "base/text.h"
#include "machine/descriptor_shares.h"
#include "machine/tcp.h"

namespace rotacasts::host::web {
namespace {

using Clock = EventLoop::Clock;

const Microhttpd& Mhd() {
  return Microhttpd::Get();
}

constexpr unsigned kQuietSeconds = 30;
constexpr std::size_t kMemoryOfConnection = std::size_t{16} * 1024;
constexpr std::size_t kMostBytesDropped = std::size_t{1024} * 1024;
constexpr std::chrono::milliseconds kPumpTime{10};  // in one turn
constexpr std::size_t kBlock = std::size_t{8} * 1024;

/// Sent with every answer: only the page's own files may load, nobody may frame or store it.
constexpr std::pair<const char*, const char*> kHeadersOfAll[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
     "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cache-Control", "no-store"},
};

std::string AddressOf(MHD_Connection* connection) {
  const auto* info = Mhd().get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
  return ClientAddressOf(*info->client_addr);
}

}  // namespace

class ReceivedRequest final : public Request {
 public:
  explicit ReceivedRequest(MHD_Connection* from) : connection(from) { address = AddressOf(from); }
  std::string Header(const char* name) const override {
    std::pair<std::string_view, std::string> found(name, {});
    const auto collect = [](void* target, MHD_ValueKind, const char* key, const char* value) {
      auto& [wanted, values] = *static_cast<decltype(found)*>(target);
      if (value != nullptr && EqualsIgnoringCase(key, wanted)) {
        values += (values.empty() ? "" : ", ") + std::string(value);
      }
      return MHD_YES;
    };
    Mhd().get_connection_values(connection, MHD_HEADER_KIND, collect, &found);
    return found.second;
  }
  std::string Cookie(const char* name) const override { return Value(MHD_COOKIE_KIND, name); }
  std::string Query(const char* name) const override { return Value(MHD_GET_ARGUMENT_KIND, name); }

  MHD_Connection* const connection;

 private:
  std::string Value(MHD_ValueKind kind, const char* name) const {
    const char* value = Mhd().lookup_connection_value(connection, kind, name);
    return value != nullptr ? value : "";
  }
};

class HttpServer::Conversation final : public Exchange,
                                       public std::enable_shared_from_this<Conversation> {
 public:
  Conversation(HttpServer& server, MHD_Connection* connection, const char* method, const char* path)
      : server_(server), request_(connection) {
    request_.method = method;
    request_.path = path;
  }
  ~Conversation() override {
    if (response_ != nullptr) Mhd().destroy_response(response_);
  }

  const Request& Asked() const override { return request_; }
  void Answer(Response response) override;
  void AnswerBitByBit(std::unique_ptr<EventSource> source) override;

  void AddToBody(const char* bytes, std::size_t size);
  bool IsEndless() const { return dropped_ > kMostBytesDropped; }
  /// Has a complete request handled; queues the answer if there is one.
  MHD_Result Proceed();
  ssize_t Read(char* buffer, std::size_t room);
  /// Continues sending if there is something to send.
  void WakeUp();
  void Resume();

 private:
  void SetHeaders(const Response& response);

  HttpServer& server_;
  ReceivedRequest request_;
  std::size_t dropped_ = 0;
  bool isHandled_ = false;
  bool isSuspended_ = false;
  MHD_Response* response_ = nullptr;
  unsigned status_ = 0;
  std::unique_ptr<EventSource> source_;
  std::string piece_;  // of the source, partly sent
  std::size_t sent_ = 0;
};

void HttpServer::Conversation::AddToBody(const char* bytes, std::size_t size) {
  if (request_.isTooLong || request_.body.size() + size > kLongestBody) {
    request_.isTooLong = true;
    request_.body.clear();
    dropped_ += size;
  } else {
    request_.body.append(bytes, size);
  }
}

MHD_Result HttpServer::Conversation::Proceed() {
  if (!isHandled_) {
    isHandled_ = true;
    server_.handler_(shared_from_this());
    if (response_ == nullptr) {
      isSuspended_ = true;
      Mhd().suspend_connection(request_.connection);
      return MHD_YES;
    }
  }
  return Mhd().queue_response(request_.connection, status_, response_);
}

void HttpServer::Conversation::SetHeaders(const Response& response) {
  status_ = response.status;
  Mhd().add_response_header(response_, "Content-Type", response.type.c_str());
  for (const auto& [name, value] : kHeadersOfAll) {
    Mhd().add_response_header(response_, name, value);
  }
  for (const auto& [name, value] : response.headers) {
    Mhd().add_response_header(response_, name.c_str(), value.c_str());
  }
}

void HttpServer::Conversation::Answer(Response response) {
  response_ = Mhd().create_response_from_buffer(response.body.size(), response.body.data(),
                                                MHD_RESPMEM_MUST_COPY);
  SetHeaders(response);
  Resume();
}

void HttpServer::Conversation::AnswerBitByBit(std::unique_ptr<EventSource> source) {
  source_ = std::move(source);
  const auto read = [](void* self, std::uint64_t, char* buffer, std::size_t room) -> ssize_t {
    try {
      return static_cast<Conversation*>(self)->Read(buffer, room);
    } catch (...) {  // no memory left
      return MHD_CONTENT_READER_END_WITH_ERROR;
    }
  };
  response_ = Mhd().create_response_from_callback(MHD_SIZE_UNKNOWN, kBlock, read, this, nullptr);
  SetHeaders({200, "text/event-stream", {}, {{"X-Accel-Buffering", "no"}}});
  server_.connections_[request_.connection].sendsEvents = true;
  Resume();
}

ssize_t HttpServer::Conversation::Read(char* buffer, std::size_t room) {
  if (sent_ == piece_.size()) {
    piece_ = source_->Next();
    sent_ = 0;
  }
  if (piece_.empty()) {
    if (source_->IsOver()) return MHD_CONTENT_READER_END_OF_STREAM;
    isSuspended_ = true;
    Mhd().suspend_connection(request_.connection);
    return 0;
  }
  const std::size_t count = std::min(room, piece_.size() - sent_);
  std::memcpy(buffer, piece_.data() + sent_, count);
  sent_ += count;
  if (sent_ == piece_.size()) {
    piece_ = {};  // an idle page uses no memory
    sent_ = 0;
  }
  return static_cast<ssize_t>(count);
}

void HttpServer::Conversation::WakeUp() {
  if (!isSuspended_) return;  // it is still sending the last piece
  piece_ = source_->Next();
  if (!piece_.empty() || source_->IsOver()) Resume();
}

void HttpServer::Conversation::Resume() {
  if (!std::exchange(isSuspended_, false)) return;
  Mhd().resume_connection(request_.connection);
  server_.mustRun_ = true;
}

/// The functions that the library calls.
struct HttpServer::Callbacks {
  static MHD_Result Access(void* self, MHD_Connection* connection, const char* url,
                           const char* method, const char*, const char* bytes, std::size_t* size,
                           void** state) {
    try {
      return Take(*static_cast<HttpServer*>(self), connection, url, method, bytes, size, state);
    } catch (...) {  // no memory left; nothing may pass through the library
      return MHD_NO;
    }
  }
  static MHD_Result Take(HttpServer& server, MHD_Connection* connection, const char* url,
                         const char* method, const char* bytes, std::size_t* size, void** state) {
    if (*state == nullptr) {
      auto conversation = std::make_shared<Conversation>(server, connection, method, url);
      *state = conversation.get();
      server.connections_[connection].conversation = std::move(conversation);
      return MHD_YES;
    }
    auto& conversation = *static_cast<Conversation*>(*state);
    if (*size == 0) return conversation.Proceed();
    conversation.AddToBody(bytes, *size);
    *size = 0;
    return conversation.IsEndless() ? MHD_NO : MHD_YES;
  }
  static void Completed(void* self, MHD_Connection* connection, void**,
                        MHD_RequestTerminationCode) {
    auto& server = *static_cast<HttpServer*>(self);
    server.connections_[connection] = {Clock::now()};  // the start of its next request
  }
  static void Connected(void* self, MHD_Connection* connection, void**,
                        MHD_ConnectionNotificationCode what) {
    auto& server = *static_cast<HttpServer*>(self);
    if (what == MHD_CONNECTION_NOTIFY_STARTED) {
      server.connections_[connection] = {Clock::now()};
    } else {
      server.connections_.erase(connection);
    }
  }
  static void Log(void*, const char*, va_list) {}  // errors of clients are not worth logging
};

HttpServer::HttpServer(EventLoop& loop, const std::string& address, Handler handler,
                       std::chrono::milliseconds longest)
    : loop_(loop), handler_(std::move(handler)), longest_(longest) {
  Start(address);
  watch_.emplace(loop_, daemon_, [this] { Run(); });
  loop_.AddDeadline([this] { return NextRun(); }, [this] { Run(); });
}

void HttpServer::Start(const std::string& address) {
  const ListenAddress listen(address);
  const unsigned v6 = listen.IsIPv6() ? unsigned{MHD_USE_IPv6} : 0U;
  const DescriptorShares& shares = OwnDescriptorShares();
  const auto connections = static_cast<unsigned>(shares.connections);
  const auto ofOneAddress = static_cast<unsigned>(shares.ofOneAddress);
  daemon_ =
      Mhd().start_daemon(DaemonWatch::kFlags | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ERROR_LOG | v6, 0,
                         nullptr, nullptr, &Callbacks::Access, this,                 //
                         MHD_OPTION_EXTERNAL_LOGGER, &Callbacks::Log, nullptr,       //
                         MHD_OPTION_SOCK_ADDR, listen.Get(),                         //
                         MHD_OPTION_ARRAY, DaemonWatch::kOptions,                    //
                         MHD_OPTION_NOTIFY_COMPLETED, &Callbacks::Completed, this,   //
                         MHD_OPTION_NOTIFY_CONNECTION, &Callbacks::Connected, this,  //
                         MHD_OPTION_CONNECTION_LIMIT, connections,                   //
                         MHD_OPTION_PER_IP_CONNECTION_LIMIT, ofOneAddress,           //
                         MHD_OPTION_CONNECTION_TIMEOUT, kQuietSeconds,               //
                         MHD_OPTION_CONNECTION_MEMORY_LIMIT, kMemoryOfConnection,    //
                         MHD_OPTION_STRICT_FOR_CLIENT, 1,                            //
                         MHD_OPTION_END);
  if (daemon_ != nullptr) return;
  throw NotServed(address);
}

HttpServer::~HttpServer() {
  watch_.reset();
  for (const auto& [handle, connection] : connections_) {
    if (connection.conversation) connection.conversation->Resume();
  }
  Mhd().stop_daemon(daemon_);
}

std::uint16_t HttpServer::Port() const {
  return Mhd().get_daemon_info(daemon_, MHD_DAEMON_INFO_BIND_PORT)->port;
}

void HttpServer::Run() {
  mustRun_ = false;
  if (leftToPump_ > 0) PumpSome();
  Mhd().run(daemon_);
  CutOff();
  watch_->HasRun();
}

std::optional<Clock::time_point> HttpServer::NextRun() const {
  if (mustRun_ || leftToPump_ > 0) return Clock::now();
  MHD_UNSIGNED_LONG_LONG milliseconds = 0;
  const auto ofWatch = watch_->Next();
  if (Mhd().get_timeout(daemon_, &milliseconds) != MHD_YES) return ofWatch;
  const auto ofServer = Clock::now() + std::chrono::milliseconds(milliseconds);
  return ofWatch ? std::min(*ofWatch, ofServer) : ofServer;
}

void HttpServer::CutOff() {
  const Clock::time_point now = Clock::now();
  if (now < nextCut_) return;
  nextCut_ = now + longest_ / 30;
  const Clock::time_point limit = now - longest_;
  for (auto& [handle, connection] : connections_) {
    if (connection.sendsEvents || connection.since > limit) continue;
    const auto* info = Mhd().get_connection_info(handle, MHD_CONNECTION_INFO_CONNECTION_FD);
    host::CutOff(static_cast<std::intptr_t>(info->connect_fd));
    connection.since = now;
  }
}

void HttpServer::Pump() {
  leftToPump_ = connections_.size();
  PumpSome();
}

void HttpServer::PumpSome() {
  const Clock::time_point end = Clock::now() + kPumpTime;
  while (leftToPump_ > 0 && !connections_.empty() && Clock::now() < end) {
    auto next = connections_.upper_bound(lastPumped_);
    if (next == connections_.end()) next = connections_.begin();
    lastPumped_ = next->first;
    --leftToPump_;
    if (next->second.sendsEvents) next->second.conversation->WakeUp();
  }
  if (connections_.empty()) leftToPump_ = 0;
}

std::size_t HttpServer::EventSources() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      connections_, [](const auto& entry) { return entry.second.sendsEvents; }));
}

}  // namespace rotacasts::host::web
