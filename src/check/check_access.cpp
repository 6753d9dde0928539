#include "check/check.h"
#include "machine/folder_owner.h"
#include "machine/native_files.h"
#include "services/host_folder.h"

namespace rotacasts::host {

void CheckAccess(const std::string& hostFolder, const std::vector<std::string>& profiles,
                 std::vector<std::string>& warnings) {
  const HostFolder paths(hostFolder);
  const FolderOwner owner(hostFolder);
  std::string last;  // its contents go with it
  const auto check = [&](const std::string& path, bool toWrite) {
    if (owner.MayUse(path, toWrite) || (!last.empty() && path.starts_with(last + "\\"))) return;
    last = path;
    warnings.push_back(
        NativePath(path).string() + ": " + owner.Name() + ", who owns " +
        NativePath(hostFolder).string() + ", cannot " + (toWrite ? "write" : "read") +
        " it; \"chown -R --reference=" + NativePath(hostFolder).string() + " " +
        NativePath(path).string() + "\" gives it to them, if the host is to run as them");
  };
  for (const std::string& path :
       {paths.Root(), paths.Settings(), paths.Configuration(), paths.Administrators(),
        paths.AdminLogs(), paths.Logs(), paths.ErrorLog(), paths.Reports(), paths.Lock()}) {
    check(path, true);
  }
  check(paths.Profiles(), false);
  for (const std::string& profile : profiles) {
    check(paths.Profiles() + "\\" + profile, true);
    check(paths.Description(profile), false);
    const std::string settings = paths.Profiles() + "\\" + profile + "\\settings";
    check(settings, true);
    check(settings + "\\" + HostFolder::kMessageFile, true);
    check(paths.Profiles() + "\\" + profile + "\\adminlogs", true);
  }
}

}  // namespace rotacasts::host
