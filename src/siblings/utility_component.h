// The utility component of the stand-alone host: INI and text files, the error log, error reports.
#pragma once

#include <string>

#include "platform/platform.h"
#include "siblings/ini_files.h"

namespace rotacasts::host {

/// Writes reports to `reports` and errors to `logs\errors.log` in the host folder; creates both
/// folders if they are missing.
class HostUtilityComponent : public UtilityComponent {
 public:
  /// `files` and `clock` must outlive it.
  HostUtilityComponent(std::string hostFolder, const LocalClock& clock, IniFiles& files)
      : hostFolder_(std::move(hostFolder)), clock_(clock), files_(files) {}

  /// A read of the key that was written last asks whether it is stored: it raises what keeps the
  /// value from the disk.
  std::string GetIniKey(const std::string& section, const std::string& key,
                        std::string& file) override;
  void WriteIniKey(const std::string& section, const Key& key,
                   const std::optional<std::string>& value, std::string& file) override;
  std::vector<std::string> GetIniSection(const std::string& section, std::string& file) override;
  HostValue ParseIniKey(std::string&& line, bool asPair) override;
  std::vector<std::string> ReadFile(std::string& file) override;
  /// Writes earlier changes to the disk first, because the line reports them. Does nothing if the
  /// operation will run again.
  void AppendFile(const std::string& file, const std::string& text) override;
  void LogError(const std::string& module, std::string& procedure, RuntimeError& error,
                std::int32_t& line) override;
  /// Returns false if the report cannot be written.
  bool SendErrorReport(HostValue& report) override;

 private:
  /// Writes a report to a new file.
  void Deliver(std::string stamp, const std::string& text) const;
  /// Creates the folder if it is missing.
  void NeedFolder(const std::string& folder) const;

  struct WrittenKey {
    std::string file;
    std::string section;
    std::string key;
    bool operator==(const WrittenKey&) const = default;
  };

  const std::string hostFolder_;
  const LocalClock& clock_;
  IniFiles& files_;
  WrittenKey written_;  // the latest one
};

}  // namespace rotacasts::host
