// Calls the seven remote operations and the readers of message files, profile.ini and config.ini
// with arbitrary input, with the stand-alone host's real components on files in memory. Checks
// after every step that nothing happened that no input may cause.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "base/text.h"
#include "forms/headless/headless_toolkit.h"
#include "host/profile_settings.h"
#include "memory_files.h"
#include "plugin/cls_plugin.h"
#include "siblings/host_platform.h"

namespace rotacasts {
namespace {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "VIOLATED: %s\n", what);
  std::abort();
}

constexpr const char* kHostFolder = "/nowhere";
const std::string kRoot = std::string(kHostFolder) + "\\";
const std::string kFiles[] = {"", kRoot + "profiles\\srv1\\settings\\Rotacasts.ini",
                              kRoot + "profiles\\srv2\\settings\\Rotacasts.ini"};
const std::string kConfig = kRoot + "settings\\config.ini";
const std::string kErrorLog = kRoot + "logs\\errors.log";

using Operation = std::string (clsPlugin::*)(std::int32_t, const HostValue&, const HostValue&);

/// The operations, and what each may add to a message file: one line, and its section if it is
/// missing.
struct OperationRow {
  Operation call;
  const char* section = nullptr;  // null: it adds nothing
  const char* key = nullptr;      // null: a new key each time
};
constexpr OperationRow kOperations[] = {
    {&clsPlugin::GetMessagesRem},
    {&clsPlugin::AddMessageRem, kMessagesSection},
    {&clsPlugin::EnableRTRem, kOptionsSection, kEnable.key},
    {&clsPlugin::ChangeIntervalRem, kOptionsSection, kInterval.key},
    {&clsPlugin::MoveMessageUpRem},
    {&clsPlugin::MoveMessageDownRem},
    {&clsPlugin::DeleteMessageRem}};

/// The parts of a message file that an argument could forge.
struct Shape {
  explicit Shape(const std::string& bytes) : ini(bytes) {
    for (std::size_t at = 0; at < bytes.size(); at = bytes.find_first_of("\r\n", at)) {
      at = std::min(bytes.find_first_not_of("\r\n \t", at), bytes.size());
      if (at < bytes.size() && bytes[at] == '[') ++headers;
    }
  }
  std::size_t Lines(const char* section) const { return ini.Lines(section).size(); }

  /// Checks that the file got nothing except what the operation may add.
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
      : platform_(kHostFolder, folder_),
        state_((Prepare(input), platform_.Bundle(toolkit_))),
        plugin_(state_) {
    for (const int index : {1, 2}) plugin_.LoadInterface(index, 1, Pdat(index, input));
  }

  void Step(FuzzedDataProvider& input) {
    const int index = input.ConsumeIntegralInRange(1, 2);
    const int other = 3 - index;
    const std::string othersFile = folder_.files[kFiles[other]];
    const std::string before = folder_.files[kFiles[index]];

    const OperationRow& operation =
        kOperations[input.ConsumeIntegralInRange<std::size_t>(0, std::size(kOperations) - 1)];
    const HostValue data = Data(input);
    Call(operation, index, Pdat(index, input), data);

    Require(folder_.files[kFiles[other]] == othersFile, "another profile's file changed");
    const std::string& after = folder_.files[kFiles[index]];
    if (after != before) Shape(after).RequireNoMore(Shape(before), operation);
    const std::size_t logged = std::exchange(logged_, LogLines());
    Require(logged_ <= logged + 1, "one operation wrote two log lines");
  }

  /// Calls operations for profiles that were never set up or cannot be.
  void Stray(FuzzedDataProvider& input) {
    const auto index = input.ConsumeIntegral<std::int32_t>();
    if (index == 1 || index == 2) return;
    const std::string files[] = {folder_.files[kFiles[1]], folder_.files[kFiles[2]]};
    const auto call = [&](const OperationRow& operation) {
      const HostValue data = Data(input);
      Call(operation, index, Pdat(1, input), data);
      Require(folder_.files[kFiles[1]] == files[0] && folder_.files[kFiles[2]] == files[1],
              "a profile that is not set up changed a file");
    };
    std::for_each(std::next(std::begin(kOperations)), std::end(kOperations), call);
    call(kOperations[0]);  // last, because a listing sets the profile up
  }

  /// Checks that only the profiles' files and the logs exist.
  void CheckFiles() {
    for (const auto& [name, bytes] : folder_.files) {
      const bool known = name == kFiles[1] || name == kFiles[2] || name == kErrorLog ||
                         name == kConfig || name.starts_with(kRoot + "reports\\") ||
                         name.find("\\adminlogs\\") != std::string::npos;
      Require(known, name.c_str());
    }
  }

 private:
  void Call(const OperationRow& operation, std::int32_t index, const HostValue& PDAT,
            const HostValue& data) {
    platform_.Files().Run([&] {
      try {
        (plugin_.*operation.call)(index, PDAT, data);
      } catch (const RuntimeError&) {  // a listing may raise an error
      }
    });
  }

  void Prepare(FuzzedDataProvider& input) {
    folder_.files[kConfig] = input.ConsumeBool() ? "[Settings]\r\nReportErrors=0\r\n"
                                                 : input.ConsumeRandomLengthString(60);
    for (const int index : {1, 2}) {
      std::string bytes = input.ConsumeRandomLengthString(400);
      if (input.ConsumeBool()) bytes = "[Messages]\r\n1=" + bytes + "\r\n[Options]\r\n";
      folder_.files[kFiles[index]] = bytes;
    }
  }

  HostValue Pdat(int index, FuzzedDataProvider& input) {
    HostValue::Array data(pdat::kSize);
    data[pdat::kGameCode] = "JO";
    data[pdat::kProcessHandle] = data[pdat::kMessageTarget] = 1;
    data[pdat::kProfileFolder] = "srv" + std::to_string(index);
    data[pdat::kAdministrator] = input.ConsumeRandomLengthString(20);
    data[pdat::kSharedLog] = input.ConsumeBool();
    data[pdat::kAreaHeight] = data[pdat::kAreaWidth] = 9000;
    return data;
  }

  HostValue Data(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 7)) {
      case 0:
        return HostValue::Missing{};
      case 1:
        return input.ConsumeIntegral<std::int32_t>();
      case 2:
        return input.ConsumeFloatingPoint<double>();
      case 3:
        return HostValue::Array{HostValue(HostValue::Foreign{})};
      case 4:  // well-formed, with any contents
        return state_.services.Memory().Enc64(input.ConsumeRandomLengthString(200));
      case 5:
        return std::to_string(input.ConsumeIntegralInRange(-2, 9));
      case 6:
        return HostValue(input.ConsumeBool());
      default:
        return input.ConsumeRandomLengthString(200);
    }
  }

  std::size_t LogLines() {
    std::size_t lines = 0;
    for (const auto& [name, text] : folder_.files) {
      if (name.find("\\adminlogs\\") == name.npos) continue;
      for (std::size_t at = 0; at < text.size(); at = text.find("\r\n", at) + 2) {
        Require(text[at] == '[' && text.compare(at + 9, 13, "][Rotacasts] ") == 0,
                "a log line has another form");
        ++lines;
      }
    }
    return lines;
  }

  testing::MemoryFiles folder_;
  std::size_t logged_ = 0;  // lines after the latest operation
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_{timers_};
  host::HostPlatform platform_;
  PluginState state_;
  clsPlugin plugin_;
};

/// Checks that a profile.ini either describes a usable profile or is refused with a description.
void ReadProfileOf(const std::string& bytes) {
  testing::MemoryFiles files;
  files.files[kRoot + "profiles\\srv1\\profile.ini"] = bytes;
  try {
    const host::ProfileSettings profile = host::ReadProfile(kHostFolder, "srv1", files);
    Require(profile.index >= 1 && profile.index <= 32767, "an index out of range");
    Require(profile.target >= 0 && profile.target <= 65535, "a port out of range");
    Require(!profile.process.empty() && (profile.target != 0 || !profile.say.empty()),
            "a profile with nothing to read or to say");
  } catch (const RuntimeError& error) {
    Require(!error.description.empty(), "refused without a word");
  }
}

}  // namespace
}  // namespace rotacasts

/// Leaves out allocation stacks and most of the quarantine, which take a third of the time. A crash
/// is found anyway, and its input reproduces the rest.
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=0:quarantine_size_mb=1:thread_local_quarantine_size_kb=64";
}

/// Leaves out the weighting of the corpus before every input, for the same reason. Options on the
/// command line come later and win.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  static std::string options[] = {"-entropic=0", "-reload=0"};
  static std::vector<char*> all(*arguments, *arguments + *count);
  for (std::string& option : options) all.insert(all.begin() + 1, option.data());
  *count = static_cast<int>(all.size());
  all.push_back(nullptr);
  *arguments = all.data();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider input(bytes, size);
  rotacasts::Arena arena(input);
  for (int step = 0; step < 12 && input.remaining_bytes() > 0; ++step) arena.Step(input);
  arena.Stray(input);
  arena.CheckFiles();
  rotacasts::ReadProfileOf(input.ConsumeRemainingBytesAsString());
  return 0;
}
