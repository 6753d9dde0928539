// A complete host program: peak memory and processor time for 100 ticks of every profile.

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "chat_port.h"
#include "child_process.h"
#include "duel.h"
#include "host_folder_files.h"

namespace rotacasts::bench {
namespace {

using testing::TestFolder;

constexpr int kTicks = 100;

/// The chat port of every profile; counts the messages.
class Listener : public ChatPort {
 public:
  void Receive(int messages) {
    char bytes[2048];
    pollfd source{Socket(), POLLIN, 0};
    for (int i = 0; i < messages; ++i) {
      if (::poll(&source, 1, 10000) <= 0) throw std::runtime_error("the host fell silent");
      if (::recv(Socket(), bytes, sizeof bytes, 0) < 0) throw std::runtime_error("no message");
    }
  }
};

/// The peak memory of a process since it started its program. Unlike getrusage, it leaves out what
/// the parent had when it forked.
double PeakMiB(std::int64_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  double kibibytes = 0;
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") status >> kibibytes;
  }
  if (kibibytes == 0) throw std::runtime_error("no peak is told");
  return kibibytes / 1024;
}

struct Usage {
  double peakMiB = 0;
  double processorMs = 0;
};

/// Runs a host until every profile has had its ticks, each of which sends a message.
Usage RunHost(int profiles, const std::string& process) {
  const TestFolder folder;
  Listener listener;
  for (int i = 1; i <= profiles; ++i) {
    folder.AddProfile(i, "JO", process, std::to_string(listener.port), MessageFileOf(20));
  }
  rusage before{};
  rusage after{};
  ::getrusage(RUSAGE_CHILDREN, &before);
  ChildProcess host(
      {ROTACASTS_HOST_PROGRAM, "run", "--host-folder", folder.Path(), "--minute", "30ms"});
  listener.Receive(profiles * kTicks);
  const double peak = PeakMiB(host.Id());
  host.WriteLine("quit");
  host.Wait();
  ::getrusage(RUSAGE_CHILDREN, &after);
  const auto milliseconds = [](const rusage& usage) {
    const auto of = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
  };
  return {peak, milliseconds(after) - milliseconds(before)};
}

}  // namespace

std::vector<Result> MeasureHostLoad() {
  ChildProcess server({SIMULATOR_PROGRAM, "--game-code", "JO", "--step", "86400000"});
  server.ReadUntil("chat on");
  const std::string process = std::to_string(server.Id());
  const Usage one = RunHost(1, process);
  const Usage many = RunHost(200, process);
  return {
      {"host, 200 profiles, 100 ticks: peak memory", Format("%.1f MiB", many.peakMiB),
       "the same host, 1 profile", Format("%.1f MiB", one.peakMiB), "", many.peakMiB / one.peakMiB},
      {"host, 200 profiles, 100 ticks: processor time", Format("%.0f ms", many.processorMs),
       "the same host, 1 profile", Format("%.0f ms", one.processorMs), "",
       many.processorMs / one.processorMs}};
}

}  // namespace rotacasts::bench
