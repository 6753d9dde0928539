#include "store/admin_log.h"

#include <algorithm>

#include "base/text.h"
#include "services/guard.h"
#include "services/host_folder.h"

namespace rotacasts {

void AdminLog::Write(const ProfileData& PDAT, std::string_view action, const std::string& value) {
  const LocalTime now = services_.Now();
  const HostFolder paths(services_.HostFolder());
  const std::string folder =
      PDAT.UsesSharedLog() ? paths.AdminLogs() : paths.AdminLogs(PDAT.ProfileFolder());
  const std::string file = FileIn(folder, now);
  FileSystemObject& files = services_.FileSystem();
  // Another command's line can make either between the question and the answer.
  const auto create = [](auto&& made) { ResumeNext({ErrorNumber::FileAlreadyExists}, made); };
  if (!files.FolderExists(folder)) create([&] { files.CreateFolder(folder); });
  if (!files.FileExists(file)) create([&] { files.CreateTextFile(file); });
  std::string line = "[" + FormatTime(now) + "][Rotacasts] ";
  line.append(action).append(value).append(") from ").append(PDAT.Administrator());
  const auto breaksALine = [](char c) { return IsControl(c) && c != '\t'; };
  std::replace_if(line.begin(), line.end(), breaksALine, ' ');
  services_.Utility().AppendFile(file, line);
}

std::string AdminLog::FileIn(const std::string& folder, const LocalTime& day) {
  return folder + "\\" + FormatDate(day) + ".txt";
}

std::vector<std::string> AdminLog::LatestLines(std::string_view bytes, std::size_t most) {
  std::vector<std::string> lines;
  while (!bytes.empty() && lines.size() < most) {
    const std::size_t end = bytes.find_last_not_of("\r\n");
    if (end == bytes.npos) break;
    const std::size_t before = bytes.find_last_of("\r\n", end);
    const std::size_t begin = before == bytes.npos ? 0 : before + 1;
    lines.push_back(FromWindows1252(bytes.substr(begin, end + 1 - begin)));
    bytes = bytes.substr(0, begin);
  }
  return lines;
}

}  // namespace rotacasts
