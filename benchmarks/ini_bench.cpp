// The INI component against SimpleIni, from a file on disk.

#define SI_CONVERT_ICU  // as Debian builds it; the narrow classes used here convert nothing
#include <SimpleIni.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "duel.h"
#include "forms/headless/headless_toolkit.h"
#include "host_folder_files.h"
#include "plugin/cls_plugin.h"
#include "siblings/host_platform.h"

namespace rotacasts::bench {
namespace {

using testing::TestFolder;

/// Two copies of a file, one for each side, so that neither sees the other's changes.
struct IniArena {
  explicit IniArena(int messages) : messageCount(messages) {
    folder.Write("ours.ini", MessageFileOf(messages));
    folder.Write("theirs.ini", MessageFileOf(messages));
    ours = folder.File("ours.ini");
    theirs = folder.File("theirs.ini");
    middle = std::to_string(messages / 2);
  }
  TestFolder folder;
  host::SystemClock clock;
  host::MachineFiles machine;
  host::IniFiles files{machine};
  host::HostUtilityComponent utility{folder.Path(), clock, files};
  int messageCount;
  std::string ours;
  std::string theirs;
  std::string middle;  // the key that is read and changed
  int round = 0;       // makes every write a change
};

void Flush(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY);
  if (::fsync(file) != 0) std::abort();
  ::close(file);
}

/// Puts the new file in place so that it survives a power failure.
void PutInPlace(const std::string& beside, const std::string& path) {
  Flush(beside);
  if (::rename(beside.c_str(), path.c_str()) != 0) std::abort();
  Flush(path.substr(0, path.rfind('/')));
}

void Load(CSimpleIniA& ini, const std::string& file) {
  if (ini.LoadFile(file.c_str()) < 0) std::abort();
}

void AddDuels(int messages, std::vector<Duel>& duels) {
  const auto arena = std::make_shared<IniArena>(messages);
  const std::string size = ", " + std::to_string(messages) + " messages";
  duels.push_back({"INI: read the section" + size, "SimpleIni", "1.00",
                   [arena] {
                     const auto lines = arena->utility.GetIniSection("Messages", arena->ours);
                     if (static_cast<int>(lines.size()) != arena->messageCount + 1) std::abort();
                   },
                   [arena] {
                     CSimpleIniA ini;
                     Load(ini, arena->theirs);
                     const auto* section = ini.GetSection("Messages");
                     std::vector<std::string> lines;  // what the caller needs, in file order
                     CSimpleIniA::TNamesDepend keys;
                     ini.GetAllKeys("Messages", keys);
                     keys.sort(CSimpleIniA::Entry::LoadOrder());
                     for (const auto& key : keys) {
                       lines.push_back(std::string(key.pItem) + "=" + section->find(key)->second);
                     }
                     if (static_cast<int>(lines.size()) != arena->messageCount) std::abort();
                   }});
  duels.push_back({"INI: read one key" + size, "SimpleIni", "1.00",
                   [arena] {
                     if (arena->utility.GetIniKey("Messages", arena->middle, arena->ours).empty()) {
                       std::abort();
                     }
                   },
                   [arena] {
                     CSimpleIniA ini;
                     Load(ini, arena->theirs);
                     if (ini.GetValue("Messages", arena->middle.c_str()) == nullptr) std::abort();
                   }});
  duels.push_back({"INI: change one key and save, flushed" + size, "SimpleIni and a flush", "1.00",
                   [arena] {
                     arena->utility.WriteIniKey("Messages", arena->middle,
                                                "text " + std::to_string(++arena->round),
                                                arena->ours);
                   },
                   [arena] {
                     CSimpleIniA ini;
                     Load(ini, arena->theirs);
                     const std::string text = "text " + std::to_string(++arena->round);
                     ini.SetValue("Messages", arena->middle.c_str(), text.c_str());
                     const std::string beside = arena->theirs + ".new";
                     if (ini.SaveFile(beside.c_str()) < 0) std::abort();
                     PutInPlace(beside, arena->theirs);
                   }});
}

/// A plugin that deletes the first message of a list, again and again.
class ShrinkingList {
 public:
  explicit ShrinkingList(int messages)
      : bytes_(MessageFileOf(messages)),
        mostDeleted_(messages / 20),
        state_(platform_.Bundle(toolkit_)),
        plugin_(state_) {
    HostValue::Array data(pdat::kSize);
    data[pdat::kGameCode] = "JO";
    data[pdat::kProcessHandle] = data[pdat::kMessageTarget] = 1;
    data[pdat::kProfileFolder] = "srv1";
    data[pdat::kAdministrator] = "console";
    data[pdat::kSharedLog] = false;
    data[pdat::kAreaHeight] = data[pdat::kAreaWidth] = 9000;
    data_ = data;
    folder_.Write(kFile, bytes_);
    plugin_.LoadInterface(1, 1, data_);
  }
  void DeleteFirst() {
    if (++deleted_ % mostDeleted_ == 0) folder_.Write(kFile, bytes_);  // to keep it long
    std::string reply;
    platform_.Files().Run([&] { reply = plugin_.DeleteMessageRem(1, data_, 0); });
    if (reply != "1") std::abort();
  }
  /// The cost of one flushed write of the file.
  void WriteOnce() const {
    const std::string name = folder_.File("written");
    const int file = ::open((name + ".new").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (::write(file, bytes_.data(), bytes_.size()) < 0) std::abort();
    ::close(file);
    PutInPlace(name + ".new", name);
  }

 private:
  static constexpr const char* kFile = "profiles/srv1/settings/Rotacasts.ini";
  const std::string bytes_;
  const int mostDeleted_;
  TestFolder folder_;
  headless::TimerLoop timers_;
  headless::HeadlessToolkit toolkit_{timers_};
  host::HostPlatform platform_{folder_.Path()};
  PluginState state_;
  clsPlugin plugin_;
  HostValue data_;
  int deleted_ = 0;
};

}  // namespace

std::vector<Duel> IniDuels() {
  std::vector<Duel> duels;
  for (const int messages : {100, 1000, 10000}) {
    const auto list = std::make_shared<ShrinkingList>(messages);
    duels.push_back({"delete the first of " + std::to_string(messages) + " messages",
                     "one flushed write of that file", messages == 100 ? "2.00" : "",
                     [list] { list->DeleteFirst(); }, [list] { list->WriteOnce(); }});
  }
  for (const int messages : {10, 1000, 10000}) AddDuels(messages, duels);
  return duels;
}

}  // namespace rotacasts::bench
