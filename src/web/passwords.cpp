#include "web/passwords.h"

#include <fcntl.h>
#include <poll.h>
#include <sodium.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <new>
#include <utility>

namespace rotacasts::host::web {
namespace {

constexpr std::size_t kMostWaiting = 8;
constexpr auto kOperations = crypto_pwhash_OPSLIMIT_INTERACTIVE;
constexpr auto kMemory = crypto_pwhash_MEMLIMIT_INTERACTIVE;

/// The work of the child process; never returns.
[[noreturn]] void CheckInChild(const std::string& hash, const std::string& password, int answer) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::setpriority(PRIO_PROCESS, 0, 10);
  if (crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0) {
    (void)!::write(answer, "y", 1);
  }
  ::_exit(0);
}

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

PasswordChecks::~PasswordChecks() {
  if (process_ < 0) return;
  ::kill(process_, SIGKILL);
  loop_.Unwatch(answer_);
  ::close(answer_);
  ::waitpid(process_, nullptr, 0);
}

bool PasswordChecks::Check(std::string hash, std::string password,
                           std::function<void(bool)> onAnswer) {
  if (waiting_.size() >= kMostWaiting) return false;
  waiting_.push_back({std::move(hash), std::move(password), std::move(onAnswer)});
  if (waiting_.size() == 1) StartFirst();
  return true;
}

void PasswordChecks::StartFirst() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::bad_alloc();
  process_ = ::fork();
  if (process_ == 0) CheckInChild(waiting_.front().hash, waiting_.front().password, ends[1]);
  ::close(ends[1]);  // if the fork failed, the answer is no
  answer_ = ends[0];
  loop_.Watch(answer_, POLLIN, [this](short) { Finish(); });
}

void PasswordChecks::Finish() {
  char byte = 0;
  const bool isRight = ::read(answer_, &byte, 1) == 1;
  loop_.Unwatch(answer_);
  ::close(answer_);
  if (process_ > 0) ::waitpid(process_, nullptr, 0);
  process_ = -1;
  const Waiting done = std::move(waiting_.front());
  waiting_.pop_front();
  if (!waiting_.empty()) StartFirst();
  done.onAnswer(isRight);
}

}  // namespace rotacasts::host::web
