#include "web/admins.h"

#include <algorithm>
#include <optional>

#include "base/conversions.h"
#include "base/text.h"
#include "files/native_files.h"
#include "host/complaint.h"
#include "plugin/descriptor.h"
#include "siblings/file_layer.h"
#include "siblings/ini_text.h"

namespace rotacasts::host::web {
namespace {

constexpr const char* kPassword = "Password";
constexpr const char* kProfiles = "Profiles";
constexpr const char* kRightsKey = "Rights";
constexpr std::size_t kLongestName = 40;

/// The parts between the separators, trimmed, without empty ones.
std::vector<std::string> Parts(const std::string& text, const char* separators) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    const std::string_view part = TrimSpaces(std::string_view(text).substr(at, end - at));
    if (!part.empty()) parts.emplace_back(part);
    at = end + 1;
  }
  return parts;
}

/// Adds the indexes in the text; false if one part is not an index.
bool ReadIndexes(const std::string& text, Admin& admin) {
  bool isGood = true;
  for (const std::string& part : Parts(text, ", ")) {
    const std::optional<std::int32_t> index = WholeNumber(part);
    const bool isIndex = index > 0;
    if (isIndex) admin.profiles.insert(*index);
    isGood = isGood && isIndex;
  }
  return isGood;
}

void RefuseName(const std::string& name) {
  if (!name.empty() && CountCharacters(name) <= kLongestName && TrimSpaces(name) == name &&
      !HasControl(name) && name.find_first_of("[]") == name.npos) {
    return;
  }
  throw Complaint("\"" + name + "\" is no name for an administrator; give 1 to " +
                  std::to_string(kLongestName) + " letters without brackets");
}

}  // namespace

std::string NameOf(Right right) {
  const std::size_t row = right == Right::ChangeMessages ? 1 : 2;  // row 0: the plugin's name
  const std::string text = ToText(DescribePrivileges().At(row));
  return text.substr(0, text.find('|'));
}

bool ReadProfiles(const std::string& text, Admin& admin) {
  admin.profiles.clear();
  admin.seesAll = TrimSpaces(text) == "*";
  return admin.seesAll || ReadIndexes(text, admin);
}

bool ReadRights(const std::string& text, Admin& admin) {
  admin.rights.clear();
  bool isGood = true;
  for (const std::string& part : Parts(text, ",")) {
    const auto* const right = std::find_if(kRights.begin(), kRights.end(), [&](Right candidate) {
      return EqualsIgnoringCase(NameOf(candidate), part);
    });
    if (right != kRights.end()) admin.rights.insert(*right);
    isGood = isGood && right != kRights.end();
  }
  return isGood;
}

std::string ProfilesText(const Admin& admin) {
  std::string text = admin.seesAll ? "*" : "";
  for (const std::int32_t index : admin.profiles) {
    text += (text.empty() ? "" : ",") + std::to_string(index);
  }
  return text;
}

std::string RightsText(const Admin& admin) {
  std::string text;
  for (const Right right : admin.rights) text += (text.empty() ? "" : ", ") + NameOf(right);
  return text;
}

std::vector<Admin> Admins::All() const {
  const IniText ini = ReadIni(file_);
  std::vector<Admin> all;
  for (const std::string_view section : ini.Sections()) {
    const auto value = [&](const char* key) {
      return std::string(TrimSpaces(FromWindows1252(ini.Value(section, key).value_or(""))));
    };
    Admin admin{FromWindows1252(section), value(kPassword), false, {}, {}};
    ReadProfiles(value(kProfiles), admin);
    ReadRights(value(kRightsKey), admin);
    if (!admin.password.empty() && !FindAdmin(all, admin.name)) all.push_back(std::move(admin));
  }
  return all;
}

void Admins::Make() const {
  MachineFiles files;
  const std::string folder = file_.substr(0, file_.rfind('\\'));
  if (!files.FolderExists(folder)) files.CreateFolder(folder);
  ReplaceFile(file_, "");
  std::filesystem::permissions(
      NativePath(file_), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

void Admins::Set(const Admin& admin) const {
  RefuseName(admin.name);
  if (!MachineFiles().FileExists(file_)) Make();
  IniText ini = ReadIni(file_);
  const std::string section = ToWindows1252(admin.name);
  ini.SetValue(section, kPassword, admin.password);
  ini.SetValue(section, kProfiles, ProfilesText(admin));
  ini.SetValue(section, kRightsKey, RightsText(admin));
  ReplaceFile(file_, ini.Bytes());
}

void Admins::Remove(const std::string& name) const {
  IniText ini = ReadIni(file_);
  if (name.empty() || !FindAdmin(All(), name)) {
    throw Complaint("there is no administrator \"" + name + "\"; \"admin list\" lists them");
  }
  ini.RemoveSection(ToWindows1252(name));
  ReplaceFile(file_, ini.Bytes());
}

std::optional<Admin> FindAdmin(const std::vector<Admin>& all, const std::string& name) {
  for (const Admin& admin : all) {
    if (EqualsIgnoringCase(admin.name, name)) return admin;
  }
  return std::nullopt;
}

}  // namespace rotacasts::host::web
