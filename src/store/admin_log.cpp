#include "store/admin_log.h"

#include <algorithm>

#include "base/conversions.h"
#include "services/profile_tables.h"
#include "store/profile_paths.h"

namespace rotacasts {

void AdminLog::Write(const HostValue& PDAT, const std::string& action, const std::string& value) {
  const LocalTime now = services_.Now();
  const std::string parent =
      EqualsTrue(PDAT.At(pdat::kSharedLog))
          ? services_.HostFolder()
          : ProfileFolderPath(services_.HostFolder(), ToText(PDAT.At(pdat::kProfileFolder)));
  const std::string folder = parent + "\\adminlogs";
  const std::string file = folder + "\\" + FormatDate(now) + ".txt";
  FileSystemObject& files = services_.FileSystem();
  if (!files.FolderExists(folder)) files.CreateFolder(folder);
  if (!files.FileExists(file)) files.CreateTextFile(file);
  std::string line =
      "[" + FormatTime(now) + action + value + ") from " + ToText(PDAT.At(pdat::kAdministrator));
  const auto breaksALine = [](char c) { return (c >= 0 && c < ' ' && c != '\t') || c == 0x7F; };
  std::replace_if(line.begin(), line.end(), breaksALine, ' ');
  services_.Utility().AppendFile(file, line);
}

}  // namespace rotacasts
