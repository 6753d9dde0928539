#include "simulator/process.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace rotacasts::simulator {
namespace {

volatile std::sig_atomic_t endRequested = 0;

}  // namespace

std::int64_t ThisProcess() {
  return ::getpid();
}

void WatchForEnd() {
  struct sigaction action {};
  action.sa_handler = [](int) { endRequested = 1; };
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
}

bool EndRequested() {
  return endRequested != 0;
}

void EndWithParent() {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

void AllowReaders() {
  ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
}

}  // namespace rotacasts::simulator
