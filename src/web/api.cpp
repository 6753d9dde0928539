#include "web/api.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "machine/descriptor_shares.h"
#include "machine/tcp.h"
#include "siblings/plain_words.h"
#include "web/call.h"
#include "web/page_files.h"
#include "web/without_paths.h"

namespace rotacasts::host::web {

using nlohmann::json;

namespace {

constexpr const char* kCookie = "rotacasts";
constexpr const char* kKnownCookie = "rotacasts-known";
constexpr const char* kKnownFor = "; Max-Age=7776000";  // 90 days

constexpr std::size_t kMostPagesOfPerson = 16;

/// How many pages an address may have open. It can be a proxy's, so room is left in HttpServer's
/// limit for other requests.
std::size_t MostPagesOfAddress() {
  return std::max<std::size_t>(OwnDescriptorShares().ofOneAddress * 3 / 4, 1);
}

/// The client's address. A proxy on this machine is trusted to name its client, last of all.
std::string ClientOf(const Request& request) {
  if (!IsLoopback(request.address)) return request.address;
  const std::string forwarded = request.Header("X-Forwarded-For");
  const std::string_view last = std::string_view(forwarded).substr(forwarded.rfind(',') + 1);
  return ClientAddressIn(std::string(TrimSpaces(last))).value_or(request.address);
}

Refusal Busy() {
  return {503, "busy", "many are signing in; try again", {{"Retry-After", "1"}}};
}

/// The name in a Host header, without the port.
std::string HostNameIn(const std::string& header) {
  const std::size_t colon = header.find(':', header.starts_with('[') ? header.find(']') : 0);
  return header.substr(0, colon);
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

}  // namespace

enum class Need { Nothing, Session, ChangeMessages, ChangeSettings };

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
    {"GET", "/api/profiles/*/sent", Need::Session, &Api::ShowSent},
    {"POST", "/api/profiles/*/preview", Need::Session, &Api::Preview},
    {"POST", "/api/profiles/*/say", Need::ChangeMessages, &Api::Say},
    {"POST", "/api/profiles/*/messages", Need::ChangeMessages, &Api::Add},
    {"PUT", "/api/profiles/*/messages", Need::ChangeMessages, &Api::ChangeText},
    {"DELETE", "/api/profiles/*/messages", Need::ChangeMessages, &Api::Delete},
    {"POST", "/api/profiles/*/restored", Need::ChangeMessages, &Api::Restore},
    {"POST", "/api/profiles/*/moves", Need::ChangeMessages, &Api::Move},
    {"POST", "/api/profiles/*/places", Need::ChangeMessages, &Api::Place},
    {"POST", "/api/profiles/*/lists", Need::ChangeMessages, &Api::AddList},
    {"POST", "/api/profiles/*/copies", Need::ChangeMessages, &Api::CopyList},
    {"PUT", "/api/profiles/*/switch", Need::ChangeSettings, &Api::Switch},
    {"PUT", "/api/profiles/*/interval", Need::ChangeSettings, &Api::SetInterval},
};

Api::Api(EventLoop& loop, ServerHost& host, Sessions& sessions, std::vector<std::string> names,
         std::ostream& out)
    : host_(host),
      sessions_(sessions),
      names_(std::move(names)),
      out_(out),
      admins_(host.Profiles().Folder()),
      snapshots_(host),
      additions_(loop, host),
      checks_(loop),
      nobody_(HashOfNobody()) {}

void Api::Handle(const std::shared_ptr<Exchange>& exchange) {
  try {
    Find(exchange);
  } catch (const Refusal& refusal) {
    exchange->Answer(refusal);
  } catch (const RuntimeError& error) {
    exchange->Answer(
        Refusal{422, "refused", WithoutPaths(PlainWords(error), host_.Profiles().Folder())});
  } catch (...) {
    exchange->Answer(Refusal{
        500, "failed", WithoutPaths(PlainWords(CurrentRuntimeError()), host_.Profiles().Folder())});
  }
}

// A foreign page can make its own name mean this machine; then the browser sends that name. An
// address in its place can only be one that the page was fetched from.
void Api::RequireHost(const Request& request) const {
  const std::string name = HostNameIn(request.Header("Host"));
  if (EqualsIgnoringCase(name, "localhost") || ClientAddressIn(name)) return;
  if (std::ranges::any_of(
          names_, [&](const std::string& known) { return EqualsIgnoringCase(known, name); })) {
    return;
  }
  throw Refusal{421, "host",
                "the host does not know itself by the name \"" + name.substr(0, 100) +
                    "\"; start it with --web-host and that name"};
}

void Api::Find(const std::shared_ptr<Exchange>& exchange) {
  const Request& request = exchange->Asked();
  RequireHost(request);
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
  if (call.profile != 0) RequireSeen(call.admin, call.profile);
  for (const auto& [need, right] : {std::pair(Need::ChangeMessages, Right::ChangeMessages),
                                    {Need::ChangeSettings, Right::ChangeSettings}}) {
    if (route.need != need || call.admin.May(right)) continue;
    throw Refusal{403, "right", "you have not the right \"" + NameOf(right) + "\""};
  }
  if (!isChange) return;
  call.body = json::parse(request.body, nullptr, false);
  if (!call.body.is_object()) throw Refusal{400, "form", "this is no JSON object"};
}

void Api::RequireSeen(const Admin& admin, std::int32_t profile) const {
  if (admin.Sees(profile) && host_.Profiles().All().contains(profile)) return;
  throw Refusal{404, "unknown", "there is no such profile, or it is not one of yours"};
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
    trouble = PlainWords(error);
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

struct Api::Attempt {
  std::weak_ptr<Exchange> exchange;
  std::optional<Admin> admin;  // nullopt if nobody has the name or can sign in under it
  std::string name;
  std::string client;  // for the brake
  bool isSecure = false;

  void Answer(Response response) const {
    if (const auto waiting = exchange.lock()) waiting->Answer(std::move(response));
  }
};

void Api::SignIn(Call& call) {
  const std::string name(TrimSpaces(call.Text("name")));
  const std::string password = call.Text("password");
  peopleAt_ = {};
  auto admin = FindAdmin(People(), name);
  const bool isKnown = admin && browsers_.IsProof(call.Asked().Cookie(kKnownCookie), *admin);
  const std::string client = isKnown ? "known " + LowerCase(name) : ClientOf(call.Asked());
  if (const auto wait = brake_.WaitOf(client); wait.count() > 0) {
    const std::string seconds = std::to_string(wait.count());
    throw Refusal{429,
                  "slow",
                  "too many failures; try again in " + seconds + " s",
                  {{"Retry-After", seconds}}};
  }
  if (password.size() > kLongestPassword) {
    throw Refusal{422, "refused",
                  "a password has " + std::to_string(kLongestPassword) + " bytes at most"};
  }
  // A hash that somebody has broken must take as long as a good one.
  if (admin && !IsPasswordHash(admin->password)) admin.reset();
  const std::string hash = admin ? admin->password : nobody_;
  const Attempt attempt{call.exchange, std::move(admin), name, client,
                        call.Asked().Header("Origin").starts_with("https:")};
  const auto lane = isKnown ? PasswordChecks::Lane::Known : PasswordChecks::Lane::Stranger;
  const auto finish = [this, attempt](std::optional<bool> isRight) {
    FinishSignIn(attempt, isRight);
  };
  if (!checks_.Check(lane, hash, password, finish)) throw Busy();
  brake_.Attempted(client, name);
}

void Api::FinishSignIn(const Attempt& attempt, std::optional<bool> isRight) {
  if (!isRight) {
    brake_.Untried(attempt.client, attempt.name);
    return attempt.Answer(Busy());
  }
  if (!*isRight || !attempt.admin) {
    return attempt.Answer(Refusal{401, "wrong", "the name or the password is wrong"});
  }
  brake_.Succeeded(attempt.client, attempt.name);
  const auto exchange = attempt.exchange.lock();
  if (!exchange) return;
  sessions_.End(exchange->Asked().Cookie(kCookie));
  const std::string ends =
      std::string("; Path=/; HttpOnly; SameSite=Strict") + (attempt.isSecure ? "; Secure" : "");
  exchange->Answer(
      {200,
       "application/json",
       JsonText(DescriptionOf(*attempt.admin)),
       {{"Set-Cookie", std::string(kCookie) + "=" + sessions_.Begin(*attempt.admin) + ends},
        {"Set-Cookie",
         std::string(kKnownCookie) + "=" + browsers_.ProofOf(*attempt.admin) + ends + kKnownFor}}});
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

void Api::ShowSent(Call& call) {
  const std::int32_t number = WholeNumber(call.Asked().Query("number")).value_or(0);
  const json sent = snapshots_.SentText(call.profile, number);
  if (sent.is_null()) throw Refusal{404, "unknown", "the host no longer knows this text"};
  call.Answer(sent);
}

std::shared_ptr<Follower> Api::MakeFollower(const Call& call) {
  auto fresh =
      std::make_shared<Follower>(Follower{call.admin.name, call.exchange->Asked().address});
  std::size_t ofPerson = 0;
  std::size_t ofClient = 0;
  std::shared_ptr<Follower> oldest;
  std::erase_if(followers_, [](const auto& follower) { return follower.expired(); });
  for (const auto& weak : followers_) {
    const auto follower = weak.lock();
    if (follower->isReplaced) continue;
    if (follower->client == fresh->client) ++ofClient;
    if (follower->person != fresh->person) continue;
    ++ofPerson;
    if (!oldest) oldest = follower;
  }
  if (ofPerson >= kMostPagesOfPerson) {
    oldest->isReplaced = true;
    if (onChange) onChange();
  } else if (ofClient >= MostPagesOfAddress()) {
    throw Refusal{503, "busy", "too many pages are open; close some", {{"Retry-After", "30"}}};
  }
  followers_.push_back(fresh);
  return fresh;
}

void Api::Follow(Call& call) {
  const std::int32_t profile = WholeNumber(call.Asked().Query("profile")).value_or(0);
  auto follower = MakeFollower(call);
  snapshots_.FreshRows();
  call.exchange->AnswerBitByBit(std::make_unique<LiveEvents>(
      snapshots_,
      [this, token = call.Asked().Cookie(kCookie)] { return sessions_.Find(token, People()); },
      profile, std::move(follower)));
}

void Api::Preview(Call& call) {
  const std::string text = call.Message();
  const ProfileSettings& profile = host_.Profiles().At(call.profile);
  auto& previews = host_.Previews();
  const auto now = previews.TextOf(profile, previews.GameOf(profile), text);
  call.Answer({{"says", now.says},
               {"problem", WithoutPaths(now.problem, host_.Profiles().Folder())},
               {"live", IsPlaceholder(text)}});
}

}  // namespace rotacasts::host::web
