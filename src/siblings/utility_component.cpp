#include "siblings/utility_component.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/text.h"
#include "services/host_folder.h"
#include "siblings/error_log.h"

namespace rotacasts::host {
namespace {

void RefuseLineBreaks(std::string_view text, const char* what) {
  if (HasLineBreak(text) || text.find('\0') != text.npos) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                       std::string(what) + " cannot hold a line break or a NUL character");
  }
}

/// Converts a text to Windows-1252 for one line of a file. Errors: 5 if it has a line break.
std::string LineBytes(std::string_view text, const char* what) {
  RefuseLineBreaks(text, what);
  return ToWindows1252(text);
}

std::string KeyText(const UtilityComponent::Key& key) {
  const auto* number = std::get_if<std::int32_t>(&key);
  return number != nullptr ? std::to_string(*number) : std::get<std::string>(key);
}

/// Converts a key to write. Errors: 5 if it would not read back as the same key.
std::string KeyBytes(const UtilityComponent::Key& key) {
  std::string bytes = LineBytes(KeyText(key), "a key");
  const bool wouldNotReadBack = bytes.empty() || bytes.find('=') != bytes.npos ||
                                bytes.find_first_of(";#[ \t") == 0 || bytes.back() == ' ';
  if (wouldNotReadBack) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "\"" + bytes + "\" is no key");
  }
  return bytes;
}

}  // namespace

std::string HostUtilityComponent::GetIniKey(const std::string& section, const std::string& key,
                                            std::string& file) {
  if (written_ == WrittenKey{file, section, key}) files_.Confirm();
  std::string value;
  files_.Read(file, [&](const IniText& ini) {
    value = FromWindows1252(ini.Value(section, ToWindows1252(key)).value_or(""));
  });
  return value;
}

void HostUtilityComponent::WriteIniKey(const std::string& section, const Key& key,
                                       const std::optional<std::string>& value, std::string& file) {
  const std::string sectionBytes = LineBytes(section, "a section name");
  if (std::holds_alternative<std::monostate>(key)) {
    if (value) throw RuntimeError(ErrorNumber::InvalidProcedureCall, "a value needs a key");
    files_.Change(file, [&](IniText& ini) { ini.RemoveSection(sectionBytes); });
  } else if (value) {
    const std::string keyBytes = KeyBytes(key);
    const std::string valueBytes = LineBytes(*value, "a value");
    files_.Change(file, [&](IniText& ini) { ini.SetValue(sectionBytes, keyBytes, valueBytes); });
    written_ = {file, section, KeyText(key)};
  } else {
    const std::string keyBytes = ToWindows1252(KeyText(key));  // any key that the file may have
    files_.Change(file, [&](IniText& ini) { ini.RemoveKey(sectionBytes, keyBytes); });
  }
}

std::vector<std::string> HostUtilityComponent::GetIniSection(const std::string& section,
                                                             std::string& file) {
  std::vector<std::string> lines;
  files_.Read(file, [&](const IniText& ini) {
    const std::vector<IniText::Line> found = ini.Lines(section);
    lines.reserve(found.size() + 1);
    for (const IniText::Line& line : found) {
      std::string text;
      text.reserve(line.key.size() + 1 + line.value.size());
      text.append(line.key).append("=").append(line.value);
      lines.push_back(TakeFromWindows1252(std::move(text)));
    }
  });
  lines.emplace_back();  // the extra element that is not a line
  return lines;
}

HostValue HostUtilityComponent::ParseIniKey(std::string&& line, bool asPair) {
  const auto equals = line.find('=');
  if (equals == line.npos) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, line + " has no '='");
  }
  HostValue::Array pair;
  pair.reserve(2);
  pair.emplace_back(line.substr(0, equals));
  pair.emplace_back(std::move(line.erase(0, equals + 1)));
  return asPair ? HostValue(std::move(pair)) : std::move(pair[1]);
}

std::vector<std::string> HostUtilityComponent::ReadFile(std::string& file) {
  const FileBytes bytes = files_.Layer().Read(file);
  if (!bytes) throw RuntimeError(ErrorNumber::FileNotFound, NativePath(file).string());
  std::vector<std::string> lines;
  std::string_view rest = *bytes;
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(FromWindows1252(line));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return lines;
}

void HostUtilityComponent::AppendFile(const std::string& file, const std::string& text) {
  RefuseLineBreaks(text, "a line");
  if (!files_.Flush()) return;
  files_.Layer().Append(file, ToWindows1252(text, '?'));  // people read it: "?" is good enough
}

void HostUtilityComponent::LogError(const std::string& module, std::string& procedure,
                                    RuntimeError& error, std::int32_t& line) {
  if (!files_.Settle()) return;
  const HostFolder paths(hostFolder_);
  const std::string file = paths.ErrorLog();
  NeedFolder(paths.Logs());
  RotateIfLong(file);
  if (!files_.Layer().FileExists(file)) files_.Layer().Replace(file, "", nullptr);
  const LocalTime now = clock_.Now();
  std::string entry = FormatDate(now) + " " + FormatTime(now) + " " + module + " " + procedure +
                      " line " + std::to_string(line) + ": error " + std::to_string(error.number) +
                      ": " + error.description;
  // One error, one line, whatever its description quotes; the log is read by people: UTF-8.
  files_.Layer().Append(file, ReplaceControls(entry, ' '));
}

bool HostUtilityComponent::SendErrorReport(HostValue& report) {
  constexpr const char* kLabels[] = {"Error number", "Description", "Module",
                                     "Procedure",    "Affiliate",   "Line"};
  const LocalTime now = clock_.Now();
  const std::string stamp = FormatDate(now) + " " + FormatTime(now);
  std::string text = "Date: " + stamp + "\r\n";
  for (std::size_t i = 0; i < std::size(kLabels); ++i) {
    text.append(kLabels[i]).append(": ").append(ToText(report.At(i))).append("\r\n");
  }
  try {
    Deliver(stamp, text);
    return true;
  } catch (const RuntimeError&) {  // the reported error matters more than this one
    return false;
  }
}

void HostUtilityComponent::Deliver(std::string stamp, const std::string& text) const {
  const std::string folder = HostFolder(hostFolder_).Reports();
  NeedFolder(folder);
  std::replace(stamp.begin(), stamp.end(), ':', '-');
  std::string file;
  for (int number = 1; file.empty() || files_.Layer().FileExists(file); ++number) {
    file = folder + "\\" + stamp + " " + std::to_string(number) + ".txt";
  }
  files_.Layer().Replace(file, text, nullptr);
}

void HostUtilityComponent::NeedFolder(const std::string& folder) const {
  if (!files_.Layer().FolderExists(folder)) files_.Layer().CreateFolder(folder);
}

}  // namespace rotacasts::host
