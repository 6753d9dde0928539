#include "web/sessions.h"

#include <sodium.h>

#include <algorithm>

namespace rotacasts::host::web {
namespace {

constexpr std::size_t kTokenBytes = 32;
constexpr std::size_t kMostSessions = 1000;
constexpr std::size_t kMostAddresses = 10000;
constexpr int kFreeFailures = 3;
constexpr std::chrono::seconds kLongestWait{30};
constexpr std::chrono::minutes kForgiven{15};

std::chrono::seconds WaitAfter(int failures) {
  if (failures < kFreeFailures) return std::chrono::seconds(0);
  const int doublings = std::min(failures - kFreeFailures, 5);
  return std::min(std::chrono::seconds(1 << doublings), kLongestWait);
}

}  // namespace

std::string Sessions::Begin(const Admin& admin, Clock::time_point now) {
  std::erase_if(sessions_, [&](const auto& entry) { return entry.second.end <= now; });
  if (sessions_.size() >= kMostSessions) {
    sessions_.erase(
        std::min_element(sessions_.begin(), sessions_.end(),
                         [](const auto& a, const auto& b) { return a.second.end < b.second.end; }));
  }
  unsigned char bytes[kTokenBytes];
  randombytes_buf(bytes, sizeof bytes);
  std::string token(2 * kTokenBytes + 1, '\0');
  sodium_bin2hex(token.data(), token.size(), bytes, sizeof bytes);
  token.pop_back();
  sessions_[token] = {admin, now + kLength};
  return token;
}

std::optional<Admin> Sessions::Find(const std::string& token, const std::vector<Admin>& all,
                                    Clock::time_point now) {
  const auto found = sessions_.find(token);
  if (found == sessions_.end()) return std::nullopt;
  std::optional<Admin> admin = FindAdmin(all, found->second.admin.name);
  if (admin == found->second.admin && now < found->second.end) return admin;
  sessions_.erase(found);
  return std::nullopt;
}

std::chrono::seconds SignInBrake::WaitOf(const std::string& address, Clock::time_point now) {
  const auto found = failures_.find(address);
  if (found == failures_.end()) return std::chrono::seconds(0);
  const auto left = found->second.last + WaitAfter(found->second.count) - now;
  return std::max(std::chrono::ceil<std::chrono::seconds>(left), std::chrono::seconds(0));
}

void SignInBrake::Attempted(const std::string& address, Clock::time_point now) {
  std::erase_if(failures_, [&](const auto& entry) { return entry.second.last + kForgiven <= now; });
  if (failures_.size() >= kMostAddresses && !failures_.contains(address)) {
    failures_.erase(failures_.begin());
  }
  Failures& failures = failures_[address];
  ++failures.count;
  failures.last = now;
}

}  // namespace rotacasts::host::web
