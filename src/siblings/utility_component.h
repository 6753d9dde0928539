// The utility component of the stand-alone host: INI and text files, the error log, error reports.
#pragma once

#include <string>

#include "platform/platform.h"
#include "siblings/ini_files.h"

namespace rotacasts::host {

/// Reports go to `reports` and errors to `logs\errors.log` below the host folder; both folders are
/// made when they are missing.
class HostUtilityComponent : public UtilityComponent {
 public:
  /// `files` and `clock` outlive the component.
  HostUtilityComponent(std::string hostFolder, const LocalClock& clock, IniFiles& files)
      : hostFolder_(std::move(hostFolder)), clock_(clock), files_(files) {}

  std::string GetIniKey(const std::string& section, const std::string& key,
                        std::string& file) override;
  void WriteIniKey(const std::string& section, const Key& key,
                   const std::optional<std::string>& value, std::string& file) override;
  std::vector<std::string> GetIniSection(const std::string& section, std::string& file) override;
  HostValue ParseIniKey(std::string&& line, bool asPair) override;
  std::vector<std::string> ReadFile(std::string& file) override;
  /// The line tells of what was changed before it: that is put on the disk first. It is not written
  /// when the operation is to be run again.
  void AppendFile(const std::string& file, const std::string& text) override;
  void LogError(const std::string& module, std::string& procedure, RuntimeError& error,
                std::int32_t& line) override;
  /// False when the report cannot be written.
  bool SendErrorReport(HostValue& report) override;

 private:
  /// Writes a report to a file of its own.
  void Deliver(std::string stamp, const std::string& text) const;
  /// Makes it, if need be.
  void NeedFolder(const std::string& folder) const;

  const std::string hostFolder_;
  const LocalClock& clock_;
  IniFiles& files_;
};

}  // namespace rotacasts::host
