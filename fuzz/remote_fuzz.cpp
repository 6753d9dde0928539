// Drives the seven remote operations and the INI reader with arbitrary input, on the stand-alone
// host's real components and real files, and checks after every step what no input may bring about.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>

#include "base/text.h"
#include "forms/headless/headless_toolkit.h"
#include "host/components/host_file_system.h"
#include "host/components/host_platform.h"
#include "host/components/ini_text.h"
#include "plugin/cls_plugin.h"
#include "support/host_folder.h"

namespace rotacasts {
namespace {

namespace fs = std::filesystem;

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "VIOLATED: %s\n", what);
  std::abort();
}

/// Files are kept in memory where the machine offers that: thousands of runs a second.
void UseMemoryFolder() {
  if (fs::exists("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
}

constexpr const char* kFiles[] = {"", "profiles/srv1/settings/Rotacasts.ini",
                                  "profiles/srv2/settings/Rotacasts.ini"};

using Operation = std::string (clsPlugin::*)(std::int32_t, const Variant&, const Variant&);

/// The operations, and what each may bring into a message file: one line, and its section where
/// there is none yet.
struct OperationRow {
  Operation call;
  const char* section = nullptr;  // null: it brings nothing new
  const char* key = nullptr;      // null: a new one each time
};
constexpr OperationRow kOperations[] = {
    {&clsPlugin::GetMessagesRem},
    {&clsPlugin::AddMessageRem, kMessagesSection},
    {&clsPlugin::EnableRTRem, kOptionsSection, kEnableKey},
    {&clsPlugin::ChangeIntervalRem, kOptionsSection, kIntervalKey},
    {&clsPlugin::MoveMessageUpRem},
    {&clsPlugin::MoveMessageDownRem},
    {&clsPlugin::DeleteMessageRem}};

/// What a message file holds, as far as an argument could forge it.
struct Shape {
  explicit Shape(const std::string& bytes) : ini(bytes) {
    for (std::size_t at = 0; at < bytes.size(); at = bytes.find_first_of("\r\n", at)) {
      at = std::min(bytes.find_first_not_of("\r\n \t", at), bytes.size());
      if (at < bytes.size() && bytes[at] == '[') ++headers;
    }
  }
  std::size_t Lines(const char* section) const { return ini.Lines(section).size(); }

  /// Nothing came into the file but what the operation may bring.
  void RequireNoMore(const Shape& before, const OperationRow& operation) const {
    const bool hadKey = operation.section == nullptr ||
                        (operation.key != nullptr &&
                         before.ini.Value(operation.section, operation.key).has_value());
    for (const char* section : {kMessagesSection, kOptionsSection}) {
      const bool grows = operation.section == section && !hadKey;
      Require(Lines(section) <= before.Lines(section) + (grows ? 1 : 0), "a line was forged");
    }
    const bool opens = operation.section != nullptr && before.Lines(operation.section) == 0;
    Require(headers <= before.headers + (opens ? 1 : 0), "a section was forged");
  }

  host::IniText ini;
  std::size_t headers = 0;
};

class Arena {
 public:
  explicit Arena(FuzzedDataProvider& input)
      : platform_(folder_.Path()),
        state_((Prepare(input), platform_.Bundle(toolkit_))),
        plugin_(state_) {
    for (const int index : {1, 2}) plugin_.LoadInterface(index, 1, Pdat(index, input));
  }

  void Step(FuzzedDataProvider& input) {
    const int index = input.ConsumeIntegralInRange(1, 2);
    const int other = 3 - index;
    const std::string othersFile = folder_.Read(kFiles[other]);
    const Shape before(folder_.Read(kFiles[index]));
    const std::map<std::string, std::size_t> logs = LogLines();

    const OperationRow& operation =
        kOperations[input.ConsumeIntegralInRange<std::size_t>(0, std::size(kOperations) - 1)];
    const Variant data = Data(input);
    Call(operation, index, Pdat(index, input), data);

    Require(folder_.Read(kFiles[other]) == othersFile, "another profile's file changed");
    Shape(folder_.Read(kFiles[index])).RequireNoMore(before, operation);
    CheckLogs(logs);
  }

  /// Operations for profiles that were never set up, or cannot be.
  void Stray(FuzzedDataProvider& input) {
    const auto index = input.ConsumeIntegral<std::int32_t>();
    if (index == 1 || index == 2) return;
    const std::string files[] = {folder_.Read(kFiles[1]), folder_.Read(kFiles[2])};
    const auto call = [&](const OperationRow& operation) {
      const Variant data = Data(input);
      Call(operation, index, Pdat(1, input), data);
      Require(folder_.Read(kFiles[1]) == files[0] && folder_.Read(kFiles[2]) == files[1],
              "a profile that is not set up changed a file");
    };
    std::for_each(std::next(std::begin(kOperations)), std::end(kOperations), call);
    call(kOperations[0]);  // last: a listing sets the profile up
  }

  /// Nothing but the profiles' own files and the logs may have come into being.
  void CheckFiles() {
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path())) {
      if (entry.is_directory()) continue;
      const std::string name = entry.path().string().substr(folder_.Path().size() + 1);
      const bool known = name == kFiles[1] || name == kFiles[2] || name == "logs/errors.log" ||
                         name == "settings/config.ini" ||
                         name.find("adminlogs/") != std::string::npos;
      Require(known, name.c_str());
    }
  }

 private:
  void Call(const OperationRow& operation, std::int32_t index, const Variant& PDAT,
            const Variant& data) {
    try {
      (plugin_.*operation.call)(index, PDAT, data);
    } catch (const RuntimeError&) {  // a listing may fail its call
    }
  }

  void Prepare(FuzzedDataProvider& input) {
    folder_.Write("settings/config.ini", "[Settings]\r\nReportErrors=0\r\n");
    for (const int index : {1, 2}) {
      std::string bytes = input.ConsumeRandomLengthString(400);
      if (input.ConsumeBool()) bytes = "[Messages]\r\n1=" + bytes + "\r\n[Options]\r\n";
      folder_.Write(kFiles[index], bytes);
    }
  }

  Variant Pdat(int index, FuzzedDataProvider& input) {
    Variant::Array data(pdat::kSize);
    data[pdat::kGameCode] = "JO";
    data[pdat::kProcessHandle] = data[pdat::kMessageTarget] = 1;
    data[pdat::kProfileFolder] = "srv" + std::to_string(index);
    data[pdat::kAdministrator] = input.ConsumeRandomLengthString(20);
    data[pdat::kSharedLog] = input.ConsumeBool();
    data[pdat::kAreaHeight] = data[pdat::kAreaWidth] = 9000;
    return data;
  }

  Variant Data(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 7)) {
      case 0:
        return Variant::Missing{};
      case 1:
        return input.ConsumeIntegral<std::int32_t>();
      case 2:
        return input.ConsumeFloatingPoint<double>();
      case 3:
        return Variant::Array{Variant(Variant::Foreign{})};
      case 4:  // a well-formed text, whatever it says
        return state_.services.Memory().Enc64(input.ConsumeRandomLengthString(200));
      case 5:
        return std::to_string(input.ConsumeIntegralInRange(-2, 9));
      case 6:
        return Variant(input.ConsumeBool());
      default:
        return input.ConsumeRandomLengthString(200);
    }
  }

  std::map<std::string, std::size_t> LogLines() {
    std::map<std::string, std::size_t> lines;
    for (const char* place : {"adminlogs", "profiles/srv1/adminlogs", "profiles/srv2/adminlogs"}) {
      if (!fs::exists(folder_.File(place))) continue;
      for (const auto& entry : fs::directory_iterator(folder_.File(place))) {
        const std::string name = std::string(place) + "/" + entry.path().filename().string();
        const std::string text = folder_.Read(name);
        for (std::size_t at = 0; at < text.size(); at = text.find("\r\n", at) + 2) {
          Require(text[at] == '[' && text.compare(at + 9, 13, "][Rotacasts] ") == 0,
                  "a log line has another form");
          ++lines[name];
        }
      }
    }
    return lines;
  }

  void CheckLogs(const std::map<std::string, std::size_t>& before) {
    std::size_t more = 0;
    for (const auto& [name, lines] : LogLines()) {
      const auto old = before.find(name);
      more += lines - (old != before.end() ? old->second : 0);
    }
    Require(more <= 1, "one operation wrote two log lines");
  }

  testing::HostFolder folder_;
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_{timers_};
  host::HostPlatform platform_;
  PluginState state_;
  clsPlugin plugin_;
};

}  // namespace
}  // namespace rotacasts

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  rotacasts::UseMemoryFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider input(bytes, size);
  rotacasts::Arena arena(input);
  for (int step = 0; step < 12 && input.remaining_bytes() > 0; ++step) arena.Step(input);
  arena.Stray(input);
  arena.CheckFiles();
  return 0;
}
