#include "web/sessions.h"

#include <sodium.h>

#include <algorithm>
#include <new>
#include <numeric>

#include "base/text.h"

namespace rotacasts::host::web {
namespace {

constexpr std::size_t kTokenBytes = 32;
constexpr std::size_t kMostSessions = 1000;
constexpr std::ptrdiff_t kMostOfPerson = 20;
constexpr std::size_t kMostClients = 10000;  // whose failures are remembered
constexpr std::size_t kMostNames = 20;       // of one client; further ones count together
constexpr std::size_t kLongestName = 64;     // bytes that tell names apart
constexpr int kFreeFailures = 3;
constexpr std::chrono::seconds kLongestWait{30};
constexpr std::chrono::minutes kForgiven{15};

std::string KeyOf(const std::string& name) {
  return LowerCase(name.substr(0, kLongestName));
}

std::string Hexadecimal(const unsigned char* bytes, std::size_t count) {
  std::string text(2 * count + 1, '\0');
  sodium_bin2hex(text.data(), text.size(), bytes, count);
  text.pop_back();
  return text;
}

std::chrono::seconds WaitAfter(int failures) {
  if (failures < kFreeFailures) return std::chrono::seconds(0);
  const int doublings = std::min(failures - kFreeFailures, 5);
  return std::min(std::chrono::seconds(1 << doublings), kLongestWait);
}

}  // namespace

template <class Filter>
void Sessions::EndOldest(Filter&& filter) {
  auto oldest = sessions_.end();
  for (auto entry = sessions_.begin(); entry != sessions_.end(); ++entry) {
    if (!filter(*entry)) continue;
    if (oldest == sessions_.end() || entry->second.end < oldest->second.end) oldest = entry;
  }
  if (oldest != sessions_.end()) sessions_.erase(oldest);
}

std::string Sessions::Begin(const Admin& admin, Clock::time_point now) {
  std::erase_if(sessions_, [&](const auto& entry) { return entry.second.end <= now; });
  const auto isTheirs = [&](const auto& entry) { return entry.second.admin.name == admin.name; };
  if (std::ranges::count_if(sessions_, isTheirs) >= kMostOfPerson) EndOldest(isTheirs);
  if (sessions_.size() >= kMostSessions) EndOldest([](const auto&) { return true; });
  unsigned char bytes[kTokenBytes];
  randombytes_buf(bytes, sizeof bytes);
  std::string token = Hexadecimal(bytes, sizeof bytes);
  sessions_[token] = {admin, now + kLength};
  return token;
}

std::optional<Admin> Sessions::Find(const std::string& token, const std::vector<Admin>& all,
                                    Clock::time_point now) {
  const auto found = sessions_.find(token);
  if (found == sessions_.end()) return std::nullopt;
  std::optional<Admin> admin = FindAdmin(all, found->second.admin.name);
  const bool isSame = admin && admin->password == found->second.admin.password;
  if (isSame && now < found->second.end) return admin;
  sessions_.erase(found);
  return std::nullopt;
}

int SignInBrake::Failures::Total() const {
  return std::accumulate(counts.begin(), counts.end(), 0,
                         [](int sum, const auto& entry) { return sum + entry.second; });
}

std::chrono::seconds SignInBrake::WaitOf(const std::string& client, Clock::time_point now) {
  const auto found = failures_.find(client);
  if (found == failures_.end()) return std::chrono::seconds(0);
  const auto left = found->second.last + WaitAfter(found->second.Total()) - now;
  return std::max(std::chrono::ceil<std::chrono::seconds>(left), std::chrono::seconds(0));
}

void SignInBrake::MakeRoomFor(const std::string& client, Clock::time_point now) {
  std::erase_if(failures_, [&](const auto& entry) { return entry.second.last + kForgiven <= now; });
  if (failures_.size() < kMostClients || failures_.contains(client)) return;
  failures_.erase(
      std::min_element(failures_.begin(), failures_.end(),
                       [](const auto& a, const auto& b) { return a.second.last < b.second.last; }));
}

void SignInBrake::Attempted(const std::string& client, const std::string& name,
                            Clock::time_point now) {
  MakeRoomFor(client, now);
  Failures& failures = failures_[client];
  const std::string key = KeyOf(name);
  const bool isCounted = failures.counts.contains(key) || failures.counts.size() < kMostNames;
  ++failures.counts[isCounted ? key : ""];
  failures.last = now;
}

void SignInBrake::Succeeded(const std::string& client, const std::string& name) {
  const auto found = failures_.find(client);
  if (found == failures_.end()) return;
  found->second.counts.erase(KeyOf(name));
  if (found->second.counts.empty()) failures_.erase(found);
}

void SignInBrake::Untried(const std::string& client, const std::string& name) {
  const auto found = failures_.find(client);
  if (found == failures_.end()) return;
  const auto count = found->second.counts.find(KeyOf(name));
  if (count != found->second.counts.end() && count->second > 0) --count->second;
}

KnownBrowsers::KnownBrowsers() : key_(crypto_generichash_KEYBYTES, '\0') {
  if (sodium_init() < 0) throw std::bad_alloc();
  randombytes_buf(key_.data(), key_.size());
}

std::string KnownBrowsers::ProofOf(const Admin& admin) const {
  const std::string message = LowerCase(admin.name) + '\n' + admin.password;
  unsigned char hash[crypto_generichash_BYTES];
  crypto_generichash(hash, sizeof hash, reinterpret_cast<const unsigned char*>(message.data()),
                     message.size(), reinterpret_cast<const unsigned char*>(key_.data()),
                     key_.size());
  return Hexadecimal(hash, sizeof hash);
}

bool KnownBrowsers::IsProof(const std::string& text, const Admin& admin) const {
  const std::string proof = ProofOf(admin);
  return text.size() == proof.size() && sodium_memcmp(text.data(), proof.data(), proof.size()) == 0;
}

}  // namespace rotacasts::host::web
