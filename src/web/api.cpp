#include "web/api.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "machine/linux/tcp.h"
#include "web/call.h"
#include "web/live_events.h"
#include "web/page_files.h"

namespace rotacasts::host::web {

using nlohmann::json;

namespace {

constexpr const char* kCookie = "rotacasts";

enum class Need { Nothing, Session, ChangeMessages, ChangeSettings };

/// The client's address. A proxy on this machine is trusted to name its client.
std::string ClientOf(const Request& request) {
  if (!IsLoopback(request.address)) return request.address;
  const std::string forwarded = request.Header("X-Forwarded-For");
  const std::string last(TrimSpaces(forwarded.substr(forwarded.rfind(',') + 1)));
  return last.empty() ? request.address : last.substr(0, 64);
}

/// Whether the request comes from a page of this host; browsers send the origin with every change.
bool IsOwnOrigin(const Request& request) {
  const std::string origin = request.Header("Origin");
  const auto scheme = origin.find("://");
  const std::string host = request.Header("Host");
  return scheme != origin.npos && !host.empty() && origin.substr(scheme + 3) == host;
}

bool IsJson(const Request& request) {
  const std::string type = request.Header("Content-Type");
  return EqualsIgnoringCase(TrimSpaces(std::string_view(type).substr(0, type.find(';'))),
                            "application/json");
}

json DescriptionOf(const Admin& admin) {
  json rights = json::array();
  for (const Right right : admin.rights) rights.push_back(NameOf(right));
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return {{"name", admin.name},
          {"rights", rights},
          {"now", std::chrono::duration_cast<std::chrono::milliseconds>(now).count()}};
}

}  // namespace

struct Api::Route {
  const char* method;
  const char* path;  // "*" is a profile's index
  Need need;
  void (Api::*answer)(Call&);

  /// The profile's index, 0 if the path has none; nullopt if the path is another one.
  std::optional<std::int32_t> Match(std::string_view asked) const {
    const std::string_view mine = path;
    const auto star = mine.find('*');
    if (star == mine.npos) return asked == mine ? std::optional(0) : std::nullopt;
    const std::string_view tail = mine.substr(star + 1);
    if (!asked.starts_with(mine.substr(0, star)) || !asked.ends_with(tail)) return std::nullopt;
    if (asked.size() <= star + tail.size()) return std::nullopt;
    const std::string_view word = asked.substr(star, asked.size() - star - tail.size());
    const std::optional<std::int32_t> index = WholeNumber(word);
    return index > 0 ? index : std::nullopt;
  }
};

const Api::Route Api::kRoutes[] = {
    {"POST", "/api/session", Need::Nothing, &Api::SignIn},
    {"GET", "/api/session", Need::Session, &Api::WhoAmI},
    {"DELETE", "/api/session", Need::Session, &Api::SignOut},
    {"GET", "/api/placeholders", Need::Session, &Api::ListPlaceholders},
    {"GET", "/api/profiles", Need::Session, &Api::ListProfiles},
    {"GET", "/api/events", Need::Session, &Api::Follow},
    {"GET", "/api/profiles/*/messages", Need::Session, &Api::ShowMessages},
    {"GET", "/api/profiles/*/log", Need::Session, &Api::ShowLog},
    {"POST", "/api/profiles/*/preview", Need::Session, &Api::Preview},
    {"POST", "/api/profiles/*/say", Need::ChangeMessages, &Api::Say},
    {"POST", "/api/profiles/*/messages", Need::ChangeMessages, &Api::Add},
    {"DELETE", "/api/profiles/*/messages", Need::ChangeMessages, &Api::Delete},
    {"POST", "/api/profiles/*/restored", Need::ChangeMessages, &Api::Restore},
    {"POST", "/api/profiles/*/moves", Need::ChangeMessages, &Api::Move},
    {"PUT", "/api/profiles/*/switch", Need::ChangeSettings, &Api::Switch},
    {"PUT", "/api/profiles/*/interval", Need::ChangeSettings, &Api::SetInterval},
};

Api::Api(EventLoop& loop, ServerHost& host, Sessions& sessions, std::ostream& out)
    : host_(host),
      sessions_(sessions),
      out_(out),
      admins_(host.Profiles().Folder()),
      snapshots_(host),
      checks_(loop),
      nobody_(HashOfNobody()) {}

void Api::Handle(const std::shared_ptr<Exchange>& exchange) {
  try {
    Find(exchange);
  } catch (const Refusal& refusal) {
    exchange->Answer(refusal);
  } catch (const RuntimeError& error) {
    exchange->Answer(Refusal{422, "refused", error.description});
  } catch (...) {
    exchange->Answer(Refusal{500, "failed", CurrentRuntimeError().description});
  }
}

void Api::Find(const std::shared_ptr<Exchange>& exchange) {
  const Request& request = exchange->Asked();
  const std::string method = request.method == "HEAD" ? "GET" : request.method;
  std::string allowed;
  for (const PageFile& file : kPageFiles) {
    if (request.path != file.path) continue;
    if (method == "GET") {
      return exchange->Answer({200, file.type, std::string(file.bytes)});
    }
    allowed = "GET";
  }
  for (const Route& route : kRoutes) {
    const auto profile = route.Match(request.path);
    if (!profile) continue;
    if (method != route.method) {
      allowed += (allowed.empty() ? "" : ", ") + std::string(route.method);
      continue;
    }
    Call call{exchange, *profile};
    Admit(route, call);
    return (this->*route.answer)(call);
  }
  if (allowed.empty()) throw Refusal{404, "unknown", "there is nothing here"};
  throw Refusal{405, "method", "this takes " + allowed, {{"Allow", allowed}}};
}

void Api::Admit(const Route& route, Call& call) {
  const Request& request = call.Asked();
  const bool isChange = std::string_view(route.method) != "GET";
  if (isChange && !IsOwnOrigin(request)) {
    throw Refusal{403, "origin", "this did not come from the page itself"};
  }
  if (isChange && !IsJson(request)) throw Refusal{415, "type", "this has to be application/json"};
  if (request.isTooLong) throw Refusal{413, "long", "this is too long"};
  if (route.need != Need::Nothing) {
    auto admin = PersonOf(request);
    if (!admin) throw Refusal{401, "signed out", "sign in first"};
    call.admin = std::move(*admin);
  }
  if (call.profile != 0 &&
      (!call.admin.Sees(call.profile) || !host_.Profiles().All().contains(call.profile))) {
    throw Refusal{404, "unknown", "there is no such profile, or it is not one of yours"};
  }
  for (const auto& [need, right] : {std::pair(Need::ChangeMessages, Right::ChangeMessages),
                                    {Need::ChangeSettings, Right::ChangeSettings}}) {
    if (route.need != need || call.admin.May(right)) continue;
    throw Refusal{403, "right", "you have not the right \"" + NameOf(right) + "\""};
  }
  if (!isChange) return;
  call.body = json::parse(request.body, nullptr, false);
  if (!call.body.is_object()) throw Refusal{400, "form", "this is no JSON object"};
}

const std::vector<Admin>& Api::People() {
  const Clock::time_point now = Clock::now();
  if (now - peopleAt_ < std::chrono::seconds(1)) return people_;
  peopleAt_ = now;
  std::string trouble;
  try {
    people_ = admins_.All();
  } catch (const RuntimeError& error) {  // must not stop the broadcasts
    people_.clear();
    trouble = error.description;
  }
  if (trouble != trouble_ && !trouble.empty()) {
    out_ << "nobody can be signed in: " << trouble << "\n" << std::flush;
  }
  trouble_ = std::move(trouble);
  return people_;
}

std::optional<Admin> Api::PersonOf(const Request& request) {
  return sessions_.Find(request.Cookie(kCookie), People());
}

// --- Sessions ---

void Api::SignIn(Call& call) {
  static const Refusal kBusy{503, "busy", "many are signing in; try again", {{"Retry-After", "1"}}};
  const std::string client = ClientOf(call.Asked());
  if (const auto wait = brake_.WaitOf(client); wait.count() > 0) {
    const std::string seconds = std::to_string(wait.count());
    throw Refusal{429,
                  "slow",
                  "too many failures; try again in " + seconds + " s",
                  {{"Retry-After", seconds}}};
  }
  const std::string name = call.Text("name");
  const std::string password = call.Text("password");
  peopleAt_ = {};
  const auto admin = FindAdmin(People(), name);
  const bool isSecure = call.Asked().Header("Origin").starts_with("https:");
  const std::weak_ptr<Exchange> waiting = call.exchange;
  const auto finish = [this, waiting, admin, client, isSecure](BackgroundCheck::Answer isRight) {
    const auto exchange = waiting.lock();
    if (isRight == true && admin) brake_.Succeeded(client);
    if (!exchange) return;
    if (!isRight) return exchange->Answer(kBusy);
    if (!*isRight || !admin) {
      return exchange->Answer(Refusal{401, "wrong", "the name or the password is wrong"});
    }
    sessions_.End(exchange->Asked().Cookie(kCookie));
    const std::string cookie = std::string(kCookie) + "=" + sessions_.Begin(*admin) +
                               "; Path=/; HttpOnly; SameSite=Strict" + (isSecure ? "; Secure" : "");
    exchange->Answer(
        {200, "application/json", JsonText(DescriptionOf(*admin)), {{"Set-Cookie", cookie}}});
  };
  brake_.Attempted(client);
  if (!checks_.Check(admin ? admin->password : nobody_, password.substr(0, kLongestPassword),
                     finish)) {
    throw kBusy;
  }
}

void Api::WhoAmI(Call& call) {
  call.Answer(DescriptionOf(call.admin));
}

void Api::SignOut(Call& call) {
  sessions_.End(call.Asked().Cookie(kCookie));
  call.Answer({{"done", "signed out"}});
}

// --- Reading ---

void Api::ListPlaceholders(Call& call) {
  call.Answer({{"placeholders", AllPlaceholders()}});
}

void Api::ListProfiles(Call& call) {
  std::string body = "{\"profiles\":[";
  const char* separator = "";
  for (const auto& [index, row] : snapshots_.FreshRows()) {
    if (row.json.empty() || !call.admin.Sees(index)) continue;
    body += separator + row.json;
    separator = ",";
  }
  call.exchange->Answer({200, "application/json", body + "]}"});
}

void Api::ShowMessages(Call& call) {
  call.exchange->Answer({200, "application/json", snapshots_.MessagesOf(call.profile).json});
}

void Api::ShowLog(Call& call) {
  if (!snapshots_.MaySeeLog(call.admin)) {
    throw Refusal{403, "profiles", "the log tells of every profile, and not all are yours"};
  }
  call.exchange->Answer({200, "application/json", snapshots_.LogOf(call.profile).json});
}

void Api::Follow(Call& call) {
  const std::int32_t profile = WholeNumber(call.Asked().Query("profile")).value_or(0);
  snapshots_.FreshRows();
  call.exchange->AnswerBitByBit(std::make_unique<LiveEvents>(
      snapshots_,
      [this, token = call.Asked().Cookie(kCookie)] { return sessions_.Find(token, People()); },
      profile));
}

void Api::Preview(Call& call) {
  const std::string text = call.Message();
  const ProfileSettings& profile = host_.Profiles().At(call.profile);
  auto& previews = host_.Previews();
  const auto now = previews.TextOf(profile, previews.GameOf(profile), text);
  call.Answer({{"says", now.says}, {"problem", now.problem}, {"live", IsPlaceholder(text)}});
}

}  // namespace rotacasts::host::web
