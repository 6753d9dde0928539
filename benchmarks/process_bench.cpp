// Reading a running process: the player scan and the timer tick against the bare system calls.

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>

#include "base/text.h"
#include "child_process.h"
#include "duel.h"
#include "forms/headless/headless_toolkit.h"
#include "host/headless_plugin.h"
#include "host_folder_files.h"
#include "plugin/cls_plugin.h"
#include "siblings/host_platform.h"
#include "stats/player_scan.h"

namespace rotacasts::bench {
namespace {

using testing::TestFolder;

/// A game server that never changes: every read returns the same values.
struct Server {
  explicit Server(int players)
      : process({SIMULATOR_PROGRAM, "--game-code", "JO", "--players", std::to_string(players),
                 "--step", "86400000"}) {
    const std::string line = process.ReadUntil("chat on").value_or(":0");
    port = line.substr(line.rfind(':') + 1);
  }
  ChildProcess process;
  std::string port;
};

/// Only the system calls.
class BareReader {
 public:
  explicit BareReader(std::int64_t process) : process_(static_cast<pid_t>(process)) {}
  std::int32_t Long(std::int32_t address) const {
    std::int32_t value = 0;
    const iovec local{&value, sizeof value};
    const iovec remote{reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)), sizeof value};
    if (::process_vm_readv(process_, &local, 1, &remote, 1, 0) != sizeof value) std::abort();
    return value;
  }
  /// Reads like a read of a name: 255 bytes in one call, in two pieces if they cross a page.
  bool HasText(std::int32_t address) const {
    char text[255];
    const auto begin = static_cast<std::uintptr_t>(address);
    const std::size_t first = std::min<std::size_t>(sizeof text, 4096 - begin % 4096);
    const iovec local{text, sizeof text};
    const iovec remote[] = {{reinterpret_cast<void*>(begin), first},
                            {reinterpret_cast<void*>(begin + first), sizeof text - first}};
    const int pieces = first < sizeof text ? 2 : 1;
    if (::process_vm_readv(process_, &local, 1, remote, pieces, 0) <= 0) std::abort();
    return text[0] != '\0';
  }

 private:
  pid_t process_;
};

/// The least that a scan can cost: one read for the numbers, one for all slots at once.
class VectoredScan {
 public:
  explicit VectoredScan(std::int64_t process) : process_(static_cast<pid_t>(process)) {}

  void operator()() {
    std::int32_t numbers[4];
    const std::uint32_t places[] = {0x00B5DA1C, 0x00C8761C, 0x024E3EF0, 0x024C0CC4};
    for (std::size_t i = 0; i < std::size(places); ++i)
      Add(&numbers[i], places[i], sizeof numbers[i]);
    Read();
    const auto slots = static_cast<std::size_t>(numbers[1]) + 1;
    bytes_.resize(slots * kPart);
    for (std::size_t slot = 0; slot < slots; ++slot) {
      Add(&bytes_[slot * kPart], static_cast<std::uint32_t>(numbers[3]) + 40 + slot * 100584,
          kPart);
    }
    Read();
  }

 private:
  static constexpr std::size_t kPart = 400;  // bytes of a slot, from its name to its last counter

  void Add(void* to, std::uintptr_t address, std::size_t size) {
    local_.push_back({to, size});
    remote_.push_back({reinterpret_cast<void*>(address), size});
  }
  void Read() {
    if (::process_vm_readv(process_, local_.data(), local_.size(), remote_.data(), remote_.size(),
                           0) <= 0) {
      std::abort();
    }
    local_.clear();
    remote_.clear();
  }

  pid_t process_;
  std::vector<iovec> local_;
  std::vector<iovec> remote_;
  std::vector<char> bytes_;
};

/// The exact calls of a scan of the common layout, in order.
std::int32_t BareScan(const BareReader& reader) {
  std::int32_t sum = 0;
  reader.Long(0x00B5DA1C);
  const std::int32_t last = reader.Long(0x00C8761C);
  reader.Long(0x024E3EF0);
  for (std::int32_t slot = 0; slot <= last; ++slot) {
    const std::int32_t start = reader.Long(0x024C0CC4) + slot * 100584;
    if (!reader.HasText(start + 40)) continue;
    for (const CounterRow& row : kCounters) sum += reader.Long(start + 80 + row.commonOffset);
  }
  return sum;
}

/// The plugin with the stand-alone host's components, set up for one profile.
struct Plugin {
  Plugin(const Server& server, const TestFolder& folder)
      : platform(folder.Path()), state(platform.Bundle(toolkit)) {
    HostValue::Array data(pdat::kSize);
    data[pdat::kGameCode] = "JO";
    data[pdat::kProcessHandle] =
        platform.Processes().Register({std::to_string(server.process.Id()), 0, "profile 1"});
    data[pdat::kMessageTarget] = server.port;
    data[pdat::kProfileFolder] = "srv1";
    data[pdat::kAreaHeight] = data[pdat::kAreaWidth] = 9000;
    clsPlugin(state).LoadInterface(1, 1, data);
    toolkit.onMessageBox = [](const std::string& text, const std::string&) {
      std::cerr << text << "\n";
      std::abort();
    };
  }
  void Tick() { state.window.IfLoaded()->Timers().Tick(1); }

  headless::TimerLoop timers;
  headless::HeadlessToolkit toolkit{timers};
  host::HostPlatform platform;
  PluginState state;
};

/// The least that a send can cost: reading the game state, reading the file, sending the datagram.
class BareTick {
 public:
  BareTick(const Server& server, std::string file)
      : reader_(server.process.Id()), file_(std::move(file)) {
    target_.sin_family = AF_INET;
    target_.sin_port = htons(static_cast<std::uint16_t>(std::stoi(server.port)));
    target_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  }
  void ReadState() const { reader_.Long(0x00C87598); }
  void Send() const {
    ReadState();
    char bytes[4096];
    const int file = ::open(file_.c_str(), O_RDONLY);
    if (::read(file, bytes, sizeof bytes) <= 0) std::abort();
    ::close(file);
    ::sendto(socket_, bytes, 30, 0, reinterpret_cast<const sockaddr*>(&target_), sizeof target_);
  }

 private:
  BareReader reader_;
  std::string file_;
  sockaddr_in target_{};
  int socket_ = ::socket(AF_INET, SOCK_DGRAM, 0);
};

/// Everything that the duels use; kept until the program ends.
struct ProcessArena {
  TestFolder folder;
  Server small{25};   // 33 slots
  Server large{250};  // 251 slots
};

/// The scan with read-ahead against single reads and against the least of reads, and without.
void AddScanDuels(const std::string& slots, const Server& server,
                  const std::shared_ptr<ProcessArena>& arena, std::vector<Duel>& duels) {
  const auto plugin = std::make_shared<Plugin>(server, arena->folder);
  const auto scan = [plugin, arena] {
    ScanPlayers({plugin->state.services, plugin->state.tables, 1}, kCommonLayout,
                [](std::int32_t, const PlayerSlot&) {});
  };
  const auto scanAhead = [plugin, scan] {
    plugin->platform.Processes().BeginTurn();
    scan();
    plugin->platform.Processes().EndTurn();
  };
  const BareReader reader(server.process.Id());
  const auto singly = [reader] { BareScan(reader); };
  const std::string job = "player scan, " + slots + " slots";
  duels.push_back({job, "bare process_vm_readv loop", "0.25", scanAhead, singly});
  duels.push_back({job + ", no read-ahead", "bare process_vm_readv loop", "1.10", scan, singly});
  duels.push_back({job + ", limit", "two vectored process_vm_readv", "3.00", scanAhead,
                   VectoredScan(server.process.Id())});
}

/// The profiles of a native host, all of them always due.
struct Crowd {
  explicit Crowd(const Server& server) : folder(server) {
    for (const auto& [index, profile] : profiles.All()) {
      HostValue::Array data = profiles.DataOf(profile);
      data[pdat::kAreaHeight] = data[pdat::kAreaWidth] = 9000;
      plugin.LoadInterface(index, 1, data);
    }
  }
  /// One turn of the event loop.
  void Turn() {
    profiles.Components().Processes().BeginTurn();
    plugin.RunDue();
    profiles.Components().Processes().EndTurn();
    const host::SentText& last = profiles.Components().GetChat().LatestOf(kProfiles).back();
    if (!last.text.starts_with("[Least Deaths]")) std::abort();
  }
  struct Folder : TestFolder {
    explicit Folder(const Server& server) {
      for (int i = 1; i <= kProfiles; ++i) {
        AddProfile(i, "JO", std::to_string(server.process.Id()), server.port,
                   "[Messages]\r\n1={ShowLeastDeaths}\r\n[Options]\r\nEnable=1\r\nInterval=1\r\n");
      }
    }
  };
  static constexpr int kProfiles = 200;

  Folder folder;
  std::ostream none{nullptr};
  host::HostProfiles profiles{folder.Path(), none};
  host::Troubles troubles{none};
  host::HeadlessPlugin plugin{profiles, troubles, std::chrono::nanoseconds(1)};
};

Duel CrowdDuel(const std::shared_ptr<ProcessArena>& arena) {
  const auto crowd = std::make_shared<Crowd>(arena->small);
  const BareReader reader(arena->small.process.Id());
  return {"turn with 200 profiles due, a statistic each", "the bare reads of 200 scans", "1.00",
          [crowd, arena] { crowd->Turn(); },
          [reader] {
            for (int i = 0; i < Crowd::kProfiles; ++i) BareScan(reader);
          }};
}

/// A read that first looks again whether its process still receives at the Target port.
Duel LookDuel(const std::shared_ptr<ProcessArena>& arena) {
  const auto processes = std::make_shared<host::GameProcesses>();
  const auto port = static_cast<std::uint16_t>(std::stoi(arena->small.port));
  const std::string name = std::filesystem::path(SIMULATOR_PROGRAM).filename().string();
  const std::int32_t handle = processes->Register({name, port, "profile 1"});
  std::string socket;
  const std::string files = "/proc/" + std::to_string(arena->small.process.Id()) + "/fd";
  for (const auto& file : std::filesystem::directory_iterator(files)) {
    const bool isSocket = std::filesystem::read_symlink(file).string().starts_with("socket:");
    if (isSocket) socket = file.path().string();
  }
  constexpr std::int32_t kGameState = 0x00C87598;
  return {"read that looks who receives at the port", "bare readlink and read", "1.50",
          [processes, handle, arena] {
            processes->LookAgain();
            processes->ReadLong(handle, kGameState);
          },
          [socket, reader = BareReader(arena->small.process.Id())] {
            char target[64];
            if (::readlink(socket.c_str(), target, sizeof target) <= 0) std::abort();
            reader.Long(kGameState);
          }};
}

}  // namespace

std::vector<Duel> ProcessDuels() {
  const auto arena = std::make_shared<ProcessArena>();
  const std::string file = "profiles/srv1/settings/Rotacasts.ini";
  arena->folder.Write(file, ReplaceAll(MessageFileOf(10), "Interval=1", "Interval=30"));
  arena->folder.Write("settings/config.ini", "[Settings]\r\nReportErrors=0\r\n");
  const auto plugin = std::make_shared<Plugin>(arena->small, arena->folder);
  const auto bare = std::make_shared<BareTick>(arena->small, arena->folder.File(file));
  std::vector<Duel> duels;
  AddScanDuels("33", arena->small, arena, duels);
  AddScanDuels("251", arena->large, arena, duels);
  duels.push_back(CrowdDuel(arena));
  duels.push_back(LookDuel(arena));
  duels.push_back({"tick that is not due", "bare read of the game state", "",
                   [plugin, arena] {
                     plugin->state.tables.ElapsedTicks(1) = 0;
                     plugin->Tick();
                   },
                   [bare] { bare->ReadState(); }});
  duels.push_back({"tick that sends a plain text", "bare read, file read and sendto", "1.30",
                   [plugin, arena] {
                     plugin->state.tables.ElapsedTicks(1) = 29;
                     plugin->Tick();
                   },
                   [bare] { bare->Send(); }});
  return duels;
}

}  // namespace rotacasts::bench
