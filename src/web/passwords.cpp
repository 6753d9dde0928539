#include "web/passwords.h"

#include <sodium.h>

#include <new>
#include <utility>

namespace rotacasts::host::web {
namespace {

constexpr std::size_t kMostWaiting = 8;
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

bool PasswordChecks::Check(std::string hash, std::string password,
                           std::function<void(bool)> onAnswer) {
  if (waiting_.size() >= kMostWaiting) return false;
  waiting_.push_back({std::move(hash), std::move(password), std::move(onAnswer)});
  if (waiting_.size() == 1) StartFirst();
  return true;
}

void PasswordChecks::StartFirst() {
  const Waiting& first = waiting_.front();
  current_.emplace(
      loop_,
      [&first] {
        return crypto_pwhash_str_verify(first.hash.c_str(), first.password.data(),
                                        first.password.size()) == 0;
      },
      [this](bool isRight) { Finish(isRight); });
}

void PasswordChecks::Finish(bool isRight) {
  const Waiting done = std::move(waiting_.front());
  waiting_.pop_front();
  if (!waiting_.empty()) StartFirst();
  done.onAnswer(isRight);
}

}  // namespace rotacasts::host::web
