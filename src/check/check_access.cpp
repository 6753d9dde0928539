#include <filesystem>

#include "check/check.h"
#include "files/native_files.h"
#include "machine/host_user.h"
#include "services/host_folder.h"

namespace rotacasts::host {
namespace {

class AccessCheck {
 public:
  AccessCheck(const std::string& hostFolder, std::vector<std::string>& warnings)
      : user_(hostFolder), warnings_(warnings) {}

  void CheckReading(const std::string& path) { Check(path, false); }
  void CheckWriting(const std::string& path) { Check(path, true); }
  /// A folder in which the host writes every file.
  void CheckContents(const std::string& folder) {
    CheckWriting(folder);
    std::error_code problem;  // of a folder that is missing or has just been warned of
    for (const auto& entry : std::filesystem::directory_iterator(NativePath(folder), problem)) {
      CheckWriting(folder + "\\" + entry.path().filename().string());
    }
  }

 private:
  void Check(const std::string& path, bool toWrite) {
    const bool isInLast = !last_.empty() && path.starts_with(last_ + "\\");
    if (isInLast || user_.MayUse(path, toWrite)) return;
    last_ = path;
    const std::string native = NativePath(path).string();
    warnings_.push_back(native + ": " + user_.Name() + ", as whom a service runs here, cannot " +
                        (toWrite ? "write" : "read") + " it; \"chown -R " + user_.Name() + " " +
                        native + "\" changes that");
  }

  const HostUser user_;
  std::vector<std::string>& warnings_;
  std::string last_;  // what was warned of; what is in it needs no warning of its own
};

}  // namespace

void CheckAccess(const std::string& hostFolder, const std::vector<ProfileSettings>& profiles,
                 std::vector<std::string>& warnings) {
  const HostFolder paths(hostFolder);
  AccessCheck check(hostFolder, warnings);
  check.CheckWriting(paths.Root());
  check.CheckWriting(paths.Lock());
  for (const std::string& folder :
       {paths.Settings(), paths.AdminLogs(), paths.Logs(), paths.Reports()}) {
    check.CheckContents(folder);
  }
  check.CheckReading(paths.Profiles());
  for (const ProfileSettings& profile : profiles) {
    check.CheckWriting(paths.Profile(profile.folder));
    check.CheckReading(paths.Description(profile.folder));
    check.CheckContents(paths.Settings(profile.folder));
    check.CheckContents(paths.AdminLogs(profile.folder));
  }
}

}  // namespace rotacasts::host
