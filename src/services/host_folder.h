// Where everything lies below a host folder: the one place that knows.
#pragma once

#include <string>
#include <utility>

namespace rotacasts {

/// Paths of a host folder, in the host suite's spelling with backslashes. A profile is given by its
/// folder's name below `profiles`; a name that would lead elsewhere, because it climbs with ".." or
/// holds control characters, raises error 76.
class HostFolder {
 public:
  /// `root` has no trailing backslash.
  explicit HostFolder(std::string root) : root_(std::move(root)) {}

  const std::string& Root() const { return root_; }
  std::string Settings() const { return root_ + "\\settings"; }
  /// The host's configuration: section "Settings", key "ReportErrors".
  std::string Configuration() const { return Settings() + "\\" + kConfiguration; }
  std::string AdminLogs() const { return root_ + "\\adminlogs"; }
  std::string Profiles() const { return root_ + "\\profiles"; }

  std::string Profile(const std::string& profile) const;
  std::string Settings(const std::string& profile) const { return Profile(profile) + "\\settings"; }
  std::string MessageFile(const std::string& profile) const {
    return Settings(profile) + "\\" + kMessageFile;
  }
  std::string AdminLogs(const std::string& profile) const {
    return Profile(profile) + "\\adminlogs";
  }

  // What the stand-alone host keeps there besides.
  /// Describes a profile: section "Profile". `folder` is one that was found there, whatever its
  /// name.
  std::string Description(const std::string& folder) const {
    return Profiles() + "\\" + folder + "\\" + kDescription;
  }
  /// Who may sign in to the page.
  std::string Administrators() const { return Settings() + "\\admins.ini"; }
  std::string Logs() const { return root_ + "\\logs"; }
  std::string ErrorLog() const { return Logs() + "\\errors.log"; }
  std::string Reports() const { return root_ + "\\reports"; }
  /// Held by the one running host.
  std::string Lock() const { return root_ + "\\host.lock"; }

  static constexpr const char* kConfiguration = "config.ini";
  static constexpr const char* kMessageFile = "Rotacasts.ini";
  static constexpr const char* kDescription = "profile.ini";

 private:
  const std::string root_;
};

}  // namespace rotacasts
