#include "web/passwords.h"

#include <sodium.h>

#include <new>
#include <utility>

#include "base/runtime_error.h"
#include "machine/descriptor_shares.h"

namespace rotacasts::host::web {
namespace {

constexpr auto kOperations = crypto_pwhash_OPSLIMIT_INTERACTIVE;
constexpr auto kMemory = crypto_pwhash_MEMLIMIT_INTERACTIVE;

}  // namespace

std::string HashPassword(const std::string& password) {
  char hash[crypto_pwhash_STRBYTES];
  if (sodium_init() < 0 ||
      crypto_pwhash_str(hash, password.data(), password.size(), kOperations, kMemory) != 0) {
    throw std::bad_alloc();
  }
  return hash;
}

std::string HashOfNobody() {
  unsigned char bytes[24];
  if (sodium_init() < 0) throw std::bad_alloc();
  randombytes_buf(bytes, sizeof bytes);
  return HashPassword({reinterpret_cast<const char*>(bytes), sizeof bytes});
}

bool IsPasswordHash(const std::string& text) {
  return crypto_pwhash_str_needs_rehash(text.c_str(), kOperations, kMemory) >= 0;
}

bool PasswordChecks::Check(Lane lane, std::string hash, std::string password, OnAnswer onAnswer) {
  std::deque<Entry>& waiting = lanes_.at(static_cast<std::size_t>(lane));
  Entry entry{std::move(hash), std::move(password), std::move(onAnswer)};
  if (!current_) return Start(entry);
  if (waiting.size() >= OwnDescriptorShares().signIns) return false;
  waiting.push_back(std::move(entry));
  return true;
}

bool PasswordChecks::Start(Entry& entry) {
  try {
    check_.emplace(
        loop_,
        [hash = entry.hash, password = entry.password] {
          return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
        },
        [this](BackgroundCheck::Answer isRight) { Finish(isRight); });
  } catch (const RuntimeError&) {  // the machine has no process or no pipe left
    return false;
  }
  current_ = std::move(entry);
  return true;
}

// Each entry is started or told at once that it cannot be: nobody else would start it later.
void PasswordChecks::StartNext() {
  for (std::deque<Entry>& lane : lanes_) {
    while (!current_ && !lane.empty()) {
      Entry next = std::move(lane.front());
      lane.pop_front();
      if (!Start(next)) next.onAnswer(std::nullopt);
    }
  }
}

void PasswordChecks::Finish(BackgroundCheck::Answer isRight) {
  const Entry done = std::move(*current_);
  current_.reset();
  StartNext();
  done.onAnswer(isRight);
}

}  // namespace rotacasts::host::web
