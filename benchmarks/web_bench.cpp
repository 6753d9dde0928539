// The page's server while 200 profiles tick: answers, open pages, memory.

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "chat_port.h"
#include "child_process.h"
#include "duel.h"
#include "host_folder_files.h"

namespace rotacasts::bench {
namespace {

using testing::TestFolder;
using Clock = std::chrono::steady_clock;

constexpr int kProfiles = 200;
constexpr int kPages = 100;
constexpr int kPagesOfPerson = 10;  // below the host's limit for one
constexpr int kRounds = 40;
constexpr int kRequestsARound = 100;
constexpr std::chrono::seconds kWatched{60};  // contains a tick of every profile
constexpr std::chrono::seconds kTicking{15};  // with one tick per second
constexpr const char* kPath = "/api/profiles/7/messages";
constexpr int kLongList = 1500;
constexpr double kLongestTurn = 1e8;  // nanoseconds that a request may hold up everything else

/// How long a process has kept a processor busy since it began, in nanoseconds.
double ProcessorTime(std::int64_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
  double nanoseconds = 0;
  if (!(file >> nanoseconds)) throw std::runtime_error("no processor time is told");
  return nanoseconds;
}

/// A persistent connection that reads whole answers.
class Client {
 public:
  explicit Client(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("nobody listens");
    }
  }
  ~Client() { ::close(socket_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void Send(const std::string& request) {
    if (::send(socket_, request.data(), request.size(), 0) < 0) throw std::runtime_error("no send");
  }
  /// The headers and body of one answer.
  std::string Receive() {
    std::string answer;
    std::size_t whole = std::string::npos;
    while (answer.size() < whole) {
      char bytes[16384];
      const ssize_t count = ::recv(socket_, bytes, sizeof bytes, 0);
      if (count <= 0) throw std::runtime_error("no answer");
      answer.append(bytes, static_cast<std::size_t>(count));
      const std::size_t end = answer.find("\r\n\r\n");
      const std::size_t length = answer.find("Content-Length: ");
      if (end < length || length == answer.npos) continue;
      whole = end + 4 + std::stoul(answer.substr(length + 16));
    }
    return answer;
  }
  /// Whether a part of an answer has arrived.
  bool HasAnswer() const {
    pollfd source{socket_, POLLIN, 0};
    return ::poll(&source, 1, 0) > 0;
  }
  /// Reads and drops whatever arrives in this time.
  static void Drain(const std::vector<std::unique_ptr<Client>>& clients, Clock::duration time) {
    std::vector<pollfd> sources;
    for (const auto& client : clients) sources.push_back({client->socket_, POLLIN, 0});
    for (const auto end = Clock::now() + time; Clock::now() < end;) {
      ::poll(sources.data(), sources.size(), 100);
      char bytes[65536];
      for (const pollfd& source : sources) {
        if (source.revents != 0) (void)!::recv(source.fd, bytes, sizeof bytes, MSG_DONTWAIT);
      }
    }
  }

 private:
  int socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
};

/// A process that gives the same answer to every request.
class BareServer {
 public:
  explicit BareServer(const std::string& answer) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);
      Serve(answer, ends[1]);
    }
    if (::read(ends[0], &port, sizeof port) != sizeof port) throw std::runtime_error("no server");
  }
  ~BareServer() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  std::int64_t Id() const { return process_; }
  std::uint16_t port = 0;

 private:
  [[noreturn]] static void Serve(std::string answer, int told) {
    const auto access = [](void* text, MHD_Connection* connection, const char*, const char*,
                           const char*, const char*, std::size_t*, void** state) -> MHD_Result {
      // An answer to the first call, which brings the headers, would end the connection.
      if (std::exchange(*state, text) == nullptr) return MHD_YES;
      const auto& bytes = *static_cast<std::string*>(text);
      MHD_Response* response = MHD_create_response_from_buffer(
          bytes.size(), const_cast<char*>(bytes.data()), MHD_RESPMEM_PERSISTENT);
      MHD_add_response_header(response, "Content-Type", "application/json");
      const MHD_Result result = MHD_queue_response(connection, 200, response);
      MHD_destroy_response(response);
      return result;
    };
    MHD_Daemon* daemon =
        MHD_start_daemon(MHD_USE_EPOLL, 0, nullptr, nullptr, access, &answer, MHD_OPTION_END);
    const std::uint16_t bound = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT)->port;
    (void)!::write(told, &bound, sizeof bound);
    pollfd source{MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd, POLLIN, 0};
    for (;;) {
      MHD_UNSIGNED_LONG_LONG milliseconds = 1000;
      MHD_get_timeout(daemon, &milliseconds);
      ::poll(&source, 1, static_cast<int>(std::min<MHD_UNSIGNED_LONG_LONG>(milliseconds, 1000)));
      MHD_run(daemon);
    }
  }
  pid_t process_ = -1;
};

struct Latencies {
  std::vector<double> nanoseconds;
  double processorTime = 0;  // nanoseconds of the server, for all of them

  void Ask(Client& client, const std::string& request, std::int64_t server) {
    const double before = ProcessorTime(server);
    for (int i = 0; i < kRequestsARound; ++i) {
      const auto begin = Clock::now();
      client.Send(request);
      client.Receive();
      nanoseconds.push_back(static_cast<double>((Clock::now() - begin).count()));
    }
    processorTime += ProcessorTime(server) - before;
  }
  double ProcessorTimeOfOne() const {
    return processorTime / static_cast<double>(nanoseconds.size());
  }
  double Percentile(double share) {
    std::sort(nanoseconds.begin(), nanoseconds.end());
    return nanoseconds[static_cast<std::size_t>(share *
                                                static_cast<double>(nanoseconds.size() - 1))];
  }
};

/// The chat port of every profile: when each profile's messages arrived, according to the kernel.
class Arrivals : public ChatPort {
 public:
  Arrivals() {
    const int on = 1;
    ::setsockopt(Socket(), SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
  }

  /// Takes the messages that have arrived. Times are in nanoseconds since 1970.
  std::map<std::string, std::vector<double>> Take() {
    std::map<std::string, std::vector<double>> moments;
    char text[2048];
    char extra[256];
    iovec bytes{text, sizeof text};
    for (;;) {
      msghdr message{};
      message.msg_iov = &bytes;
      message.msg_iovlen = 1;
      message.msg_control = extra;
      message.msg_controllen = sizeof extra;
      const ssize_t count = ::recvmsg(Socket(), &message, MSG_DONTWAIT);
      if (count <= 0) return moments;
      timespec moment{};
      std::memcpy(&moment, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof moment);
      const std::string words(text, static_cast<std::size_t>(count));
      moments[words.substr(0, words.find(" number"))].push_back(
          static_cast<double>(moment.tv_sec) * 1e9 + static_cast<double>(moment.tv_nsec));
    }
  }
};

/// A host with the page and a signed-in user.
class PageHost {
 public:
  /// Each profile has a list of 20 messages, the first two of `first`.
  explicit PageHost(const char* minute, int first = 20)
      : server_({SIMULATOR_PROGRAM, "--game-code", "JO", "--step", "86400000"}) {
    server_.ReadUntil("chat on");
    for (int i = 1; i <= kProfiles; ++i) {
      folder_.AddProfile(i, "JO", std::to_string(server_.Id()), std::to_string(arrivals.port),
                         MessageFileOf(i <= 2 ? first : 20, "Profile " + std::to_string(i)));
    }
    for (int person = 0; person < kPages / kPagesOfPerson; ++person) {
      ChildProcess admin({ROTACASTS_HOST_PROGRAM, "admin", "set", NameOf(person), "--host-folder",
                          folder_.Path()});
      admin.WriteLine("correct horse");
      admin.Wait();
    }
    host_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{ROTACASTS_HOST_PROGRAM, "run", "--host-folder", folder_.Path(),
                                 "--minute", minute, "--web", "127.0.0.1:0"});
    const std::string url = host_->ReadUntil("the page: ").value_or(":0");
    port = std::stoi(url.substr(url.rfind(':') + 1));
    host_->ReadUntil("profiles started");
    for (int person = 0; person < kPages / kPagesOfPerson; ++person) SignIn(NameOf(person));
  }
  std::string Get(const std::string& path, int person = 0) const {
    return "GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: " +
           cookies_.at(static_cast<std::size_t>(person)) + "\r\n\r\n";
  }
  std::string Change(const char* method, const char* path, const std::string& body) const {
    return std::string(method) + " " + path +
           " HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: " + cookies_.at(0) +
           "\r\nOrigin: http://127.0.0.1\r\nContent-Type: application/json" +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  }
  std::int64_t Id() const { return host_->Id(); }
  double KiB() const {
    std::ifstream file("/proc/" + std::to_string(host_->Id()) + "/statm");
    double pages = 0;
    file >> pages >> pages;
    return pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1024;
  }
  int port = 0;
  Arrivals arrivals;

 private:
  static std::string NameOf(int person) { return "Person" + std::to_string(person); }

  void SignIn(const std::string& name) {
    const std::string body = R"({"name":")" + name + R"(","password":"correct horse"})";
    Client client(port);
    client.Send(
        "POST /api/session HTTP/1.1\r\nHost: 127.0.0.1\r\nOrigin: "
        "http://127.0.0.1\r\nContent-Type: "
        "application/json\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body);
    const std::string answer = client.Receive();
    const std::size_t begin = answer.find("rotacasts=");
    cookies_.push_back(answer.substr(begin, answer.find(';', begin) - begin));
  }

  TestFolder folder_;
  ChildProcess server_;
  std::unique_ptr<ChildProcess> host_;
  std::vector<std::string> cookies_;  // of each person
};

/// The host's processor time, in percent of a core, while these pages are open.
double LoadWith(const PageHost& host, const std::vector<std::unique_ptr<Client>>& pages) {
  const double before = ProcessorTime(host.Id());
  if (pages.empty()) {
    std::this_thread::sleep_for(kWatched);
  } else {
    Client::Drain(pages, kWatched);
  }
  return (ProcessorTime(host.Id()) - before) * 100 /
         std::chrono::duration<double, std::nano>(kWatched).count();
}

using Pages = std::vector<std::unique_ptr<Client>>;

Pages OpenPages(const PageHost& host, int profile = 7) {
  Pages pages;
  for (int i = 0; i < kPages; ++i) {
    pages.push_back(std::make_unique<Client>(host.port));
    pages.back()->Send(
        host.Get("/api/events?profile=" + std::to_string(profile), i / kPagesOfPerson));
  }
  Client::Drain(pages, std::chrono::seconds(3));
  return pages;
}

/// By how much each tick was later than its profile's earliest tick within the second; first
/// without open pages, then with them.
std::pair<Latencies, Latencies> DelaysOfTicks() {
  PageHost host("1s");
  std::this_thread::sleep_for(kTicking);
  auto alone = host.arrivals.Take();
  const Pages pages = OpenPages(host);
  host.arrivals.Take();  // of the time while they were opened
  Client::Drain(pages, kTicking);
  auto watched = host.arrivals.Take();
  std::pair<Latencies, Latencies> delays;
  const auto phase = [](double moment) { return std::fmod(moment, 1e9); };
  for (auto& [profile, moments] : alone) {
    const double first = phase(moments.front());
    // Relative to the first tick, so that no tick crosses the end of a second.
    const auto place = [&](double moment) { return std::remainder(phase(moment) - first, 1e9); };
    double earliest = 0;
    for (const auto* list : {&moments, &watched[profile]}) {
      for (const double moment : *list) earliest = std::min(earliest, place(moment));
    }
    for (const double moment : moments) {
      delays.first.nanoseconds.push_back(place(moment) - earliest);
    }
    for (const double moment : watched[profile]) {
      delays.second.nanoseconds.push_back(place(moment) - earliest);
    }
  }
  if (delays.first.nanoseconds.size() < kProfiles * 10 ||
      delays.second.nanoseconds.size() < kProfiles * 10) {
    throw std::runtime_error("ticks are missing");
  }
  return delays;
}

/// The longest that a request waited while another changed a long list that 100 pages show.
double LongestTurn(const PageHost& host, const Pages& pages, const std::string& change) {
  Client client(host.port);
  Client other(host.port);
  double longest = 0;
  client.Send(change);
  do {
    const auto begin = Clock::now();
    other.Send(host.Get("/api/session"));
    other.Receive();
    longest = std::max(longest, static_cast<double>((Clock::now() - begin).count()));
  } while (!client.HasAnswer());
  const std::string answer = client.Receive();
  if (answer.find(" 200 ") > 20) throw std::runtime_error("refused: " + answer);
  Client::Drain(pages, std::chrono::milliseconds(500));
  return longest;
}

}  // namespace

std::vector<Result> MeasureTurns() {
  const PageHost host("60s", kLongList);
  const Pages pages = OpenPages(host, 1);
  std::string lines;
  for (int i = 0; i < 1000; ++i) lines += (i == 0 ? "\"" : ",\"") + std::to_string(i) + '"';
  const std::string first = "\"position\":0,\"text\":\"Profile 1 number 1 of the list\"";
  const std::string last = "\"position\":1499,\"text\":\"Profile 1 number 1 of the list\"";
  const struct {
    const char* job;
    const char* method;
    const char* path;
    std::string body;
  } kJobs[] = {
      {"place", "POST", "/api/profiles/1/places", "{" + first + ",\"to\":1499}"},
      {"place back", "POST", "/api/profiles/1/places", "{" + last + ",\"to\":0}"},
      {"delete", "DELETE", "/api/profiles/1/messages", "{" + first + "}"},
      {"undo the delete", "POST", "/api/profiles/1/restored", "{" + first + "}"},
      {"paste 1,000 lines", "POST", "/api/profiles/1/lists", "{\"texts\":[" + lines + "]}"},
      {"copy 1,500 messages", "POST", "/api/profiles/1/copies", "{\"from\":2}"},
  };
  std::vector<Result> results;
  for (const auto& job : kJobs) {
    const double ours = LongestTurn(host, pages, host.Change(job.method, job.path, job.body));
    results.push_back({std::string("page: longest turn, ") + job.job, FormatTime(ours), "the limit",
                       FormatTime(kLongestTurn), "1.00", ours / kLongestTurn});
  }
  return results;
}

std::vector<Result> MeasureWeb() {
  auto [alone, beside] = DelaysOfTicks();
  PageHost host("60s");
  Client client(host.port);
  client.Send(host.Get(kPath));
  const std::string answer = client.Receive();
  const BareServer bare(answer.substr(answer.find("\r\n\r\n") + 4));
  Client other(bare.port);
  Latencies ours;
  Latencies theirs;
  for (int i = 0; i < kRounds; ++i) {
    ours.Ask(client, host.Get(kPath), host.Id());
    theirs.Ask(other, host.Get(kPath), bare.Id());
  }
  const double idle = LoadWith(host, {});
  const double before = host.KiB();
  const Pages pages = OpenPages(host);
  const double busy = LoadWith(host, pages);
  Client fresh(host.port);  // the first one has timed out
  Latencies watched;
  for (int i = 0; i < kRounds; ++i) {
    watched.Ask(fresh, host.Get(kPath), host.Id());
    Client::Drain(pages, std::chrono::milliseconds(20));
  }
  const std::string bareName = "bare libmicrohttpd, same bytes";
  const auto row = [](std::string job, double our, std::string who, double their,
                      std::string target) {
    return Result{std::move(job),    FormatTime(our),   std::move(who),
                  FormatTime(their), std::move(target), our / their};
  };
  return {row("page: an answer, median", ours.Percentile(0.5), bareName, theirs.Percentile(0.5),
              "1.50"),
          row("page: an answer, 99th percentile", ours.Percentile(0.99), bareName,
              theirs.Percentile(0.99), "1.50"),
          row("page: an answer, processor time", ours.ProcessorTimeOfOne(), bareName,
              theirs.ProcessorTimeOfOne(), "1.50"),
          row("page: 99th percentile, 100 open pages", watched.Percentile(0.99),
              "the same without pages", ours.Percentile(0.99), ""),
          {"page: 100 open pages, processor", Format("%.2f %%", busy),
           "the same host without pages", Format("%.2f %%", idle), "", busy / std::max(idle, 0.01)},
          row("page: delay of a tick, median, 100 open pages", beside.Percentile(0.5),
              "the same host without pages", alone.Percentile(0.5), ""),
          row("page: delay of a tick, 99th percentile", beside.Percentile(0.99),
              "the same host without pages", alone.Percentile(0.99), ""),
          {"page: memory of an open page", Format("%.1f KiB", (host.KiB() - before) / kPages), "",
           "", "", 0}};
}

}  // namespace rotacasts::bench
