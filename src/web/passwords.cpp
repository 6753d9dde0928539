#include "web/passwords.h"

#include <sodium.h>

#include <new>
#include <utility>

#include "base/runtime_error.h"
#include "machine/linux/descriptor_shares.h"

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

bool PasswordChecks::Check(std::string hash, std::string password, OnAnswer onAnswer) {
  if (waiting_.size() >= OwnDescriptorShares().signIns) return false;
  waiting_.push_back({std::move(hash), std::move(password), std::move(onAnswer)});
  if (waiting_.size() == 1) StartFirst();
  return true;
}

void PasswordChecks::StartFirst() try {
  const Waiting& first = waiting_.front();
  current_.emplace(
      loop_,
      [&first] {
        return crypto_pwhash_str_verify(first.hash.c_str(), first.password.data(),
                                        first.password.size()) == 0;
      },
      [this](BackgroundCheck::Answer isRight) { Finish(isRight); });
} catch (const RuntimeError&) {  // the system has no process left
  Finish(std::nullopt);
}

void PasswordChecks::Finish(BackgroundCheck::Answer isRight) {
  const Waiting done = std::move(waiting_.front());
  waiting_.pop_front();
  if (!waiting_.empty()) StartFirst();
  done.onAnswer(isRight);
}

}  // namespace rotacasts::host::web
