// The INI component against SimpleIni, from a file on disk.

#define SI_CONVERT_ICU  // as Debian builds it; the narrow classes used here convert nothing
#include <SimpleIni.h>

#include <cstdlib>
#include <memory>

#include "duel.h"
#include "host/components/host_platform.h"
#include "host_folder_files.h"

namespace rotacasts::bench {
namespace {

using testing::HostFolder;

/// Two copies of one file, one for each side, so that neither finds the other's change.
struct Arena {
  explicit Arena(int messages) : messageCount(messages) {
    folder.Write("ours.ini", MessageFileOf(messages));
    folder.Write("theirs.ini", MessageFileOf(messages));
    ours = folder.File("ours.ini");
    theirs = folder.File("theirs.ini");
    middle = std::to_string(messages / 2);
  }
  HostFolder folder;
  host::SystemClock clock;
  host::MachineFiles machine;
  host::IniFiles files{machine};
  host::HostUtilityComponent utility{folder.Path(), clock, files};
  int messageCount;
  std::string ours;
  std::string theirs;
  std::string middle;  // the key that is read and changed
  int round = 0;       // makes every change a change
};

void Load(CSimpleIniA& ini, const std::string& file) {
  if (ini.LoadFile(file.c_str()) < 0) std::abort();
}

void AddDuels(int messages, std::vector<Duel>& duels) {
  const auto arena = std::make_shared<Arena>(messages);
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
  duels.push_back({"INI: change one key and save" + size, "SimpleIni", "1.00",
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
                     if (ini.SaveFile(arena->theirs.c_str()) < 0) std::abort();
                   }});
}

}  // namespace

std::vector<Duel> IniDuels() {
  std::vector<Duel> duels;
  for (const int messages : {10, 1000, 10000}) AddDuels(messages, duels);
  return duels;
}

}  // namespace rotacasts::bench
