// Sends arbitrary request bodies to the page's interface, for people with and without rights, and
// checks that nothing happens that no body may cause.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/headless_plugin.h"
#include "siblings/ini_text.h"
#include "support/host_folder.h"
#include "web/api.h"

namespace rotacasts::host::web {
namespace {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "VIOLATED: %s\n", what);
  std::abort();
}

class MadeUpRequest final : public Request {
 public:
  std::string Header(const char* name) const override {
    const std::string asked = name;
    if (asked == "Origin") return "http://x";
    if (asked == "Host") return "x";
    return asked == "Content-Type" ? "application/json" : "";
  }
  std::string Cookie(const char*) const override { return token; }
  std::string Query(const char*) const override { return {}; }
  std::string token;
};

class MadeUpExchange final : public Exchange {
 public:
  const Request& Asked() const override { return request; }
  void Answer(Response given) override {
    ++answers;
    response = std::move(given);
  }
  void AnswerBitByBit(std::unique_ptr<EventSource>) override { ++answers; }

  MadeUpRequest request;
  Response response;
  int answers = 0;
};

struct RouteRow {
  const char* method;
  const char* path;
  int linesMore;  // at most, in the message file
};
constexpr RouteRow kRoutes[] = {
    {"POST", "/api/profiles/1/preview", 0},    {"POST", "/api/profiles/1/messages", 1},
    {"DELETE", "/api/profiles/1/messages", 0}, {"POST", "/api/profiles/1/restored", 1},
    {"POST", "/api/profiles/1/moves", 0},      {"PUT", "/api/profiles/1/switch", 0},
    {"PUT", "/api/profiles/1/interval", 0},    {"POST", "/api/profiles/1/say", 0},
    {"PUT", "/api/profiles/1/messages", 0},    {"POST", "/api/profiles/1/places", 0},
    {"POST", "/api/profiles/1/lists", 97},     {"POST", "/api/profiles/1/copies", 3},
};

constexpr const char* kFiles[] = {"", "profiles/srv1/settings/Rotacasts.ini",
                                  "profiles/srv2/settings/Rotacasts.ini"};
constexpr const char* kMessages =
    "[Messages]\r\n1=a\r\n2=b\r\n3=c\r\n[Options]\r\nEnable=1\r\nInterval=3\r\n";

/// Filled before the host reads it.
struct FilledFolder : testing::TestFolder {
  FilledFolder() {
    for (const int index : {1, 2}) AddProfile(index, "JO", "no-such-program", "4001", kMessages);
  }
};

/// One host for all inputs; its files are rewritten for each.
class Arena {
 public:
  Arena() {
    admins_.Set({"Anna", "-", true, {}, {kRights.begin(), kRights.end()}});
    admins_.Set({"Ben", "-", true, {}, {}});
    host_.LoadEveryProfile();
    for (const char* name : {"Anna", "Ben"}) {
      tokens_.push_back(sessions_.Begin(*FindAdmin(admins_.All(), name)));
    }
    tokens_.emplace_back("nobody");
  }

  void Run(FuzzedDataProvider& input) {
    for (const int index : {1, 2}) folder_.Write(kFiles[index], kMessages);
    const RouteRow& route = input.PickValueInArray(kRoutes);
    const std::size_t who = input.ConsumeIntegralInRange<std::size_t>(0, 2);
    const auto exchange = std::make_shared<MadeUpExchange>();
    exchange->request.method = route.method;
    exchange->request.path = route.path;
    exchange->request.token = tokens_[who];
    exchange->request.body = input.ConsumeRemainingBytesAsString();
    api_.Handle(exchange);
    Check(route, who == 0, *exchange);
  }

 private:
  void Check(const RouteRow& route, bool hasRights, const MadeUpExchange& exchange) {
    Require(exchange.answers == 1, "a request has one answer");
    constexpr unsigned kKnown[] = {200, 400, 401, 403, 409, 422};
    const unsigned status = exchange.response.status;
    Require(std::count(std::begin(kKnown), std::end(kKnown), status) == 1, "an unknown status");
    Require(nlohmann::json::accept(exchange.response.body), "the answer is no JSON");
    Require(folder_.Read(kFiles[2]) == kMessages, "another profile's file changed");
    const std::string bytes = folder_.Read(kFiles[1]);
    const std::string_view path = route.path;
    const bool isChange = !path.ends_with("preview") && !path.ends_with("say");
    Require(bytes == kMessages || (status == 200 && hasRights && isChange),
            "a refused request changed the file");
    const IniText ini(bytes);
    Require(static_cast<int>(ini.Lines("Messages").size()) <= 3 + route.linesMore,
            "a line was forged");
    Require(ini.Lines("Options").size() == 2 && ini.Sections().size() == 2, "a section was forged");
  }

  FilledFolder folder_;
  std::ostringstream out_;
  HostOptions options_{folder_.Path()};
  HostProfiles profiles_{folder_.Path(), out_};
  Troubles troubles_{out_};
  HeadlessPlugin plugin_{profiles_, troubles_, std::chrono::minutes(1)};
  HeadlessSite site_;
  ServerHost host_{profiles_, plugin_, site_, options_};
  EventLoop loop_;
  Admins admins_{profiles_.Folder()};
  Sessions sessions_;
  Api api_{loop_, host_, sessions_, {"x"}, out_};
  std::vector<std::string> tokens_;
};

}  // namespace
}  // namespace rotacasts::host::web

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  if (std::filesystem::exists("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static rotacasts::host::web::Arena arena;
  FuzzedDataProvider input(bytes, size);
  arena.Run(input);
  return 0;
}
