// The people who may sign in to the page, and what each may do: settings/admins.ini.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace rotacasts::host::web {

/// The plugin's privileges: adding, moving, deleting and saying messages; switch and interval.
enum class Right { ChangeMessages, ChangeSettings };
inline constexpr std::array kRights = {Right::ChangeMessages, Right::ChangeSettings};
/// As the plugin calls it.
std::string NameOf(Right right);

struct Admin {
  std::string name;
  std::string password;  // its Argon2id hash
  bool seesAll = false;  // every profile, those to come included
  std::set<std::int32_t> profiles;
  std::set<Right> rights;

  bool Sees(std::int32_t profile) const { return seesAll || profiles.contains(profile); }
  bool May(Right right) const { return rights.contains(right); }
  bool operator==(const Admin&) const = default;
};

/// A section a person, named after them; letter case is of no account. Read afresh by every call;
/// what cannot be read or written raises the file's own error.
class Admins {
 public:
  explicit Admins(const std::string& hostFolder) : file_(hostFolder + "\\settings\\admins.ini") {}

  /// Those with a password, in file order. An index or a right that is none is left out.
  std::vector<Admin> All() const;
  /// Adds the person, or replaces what is known of them. Error 5 for a name that no section can
  /// have. Nobody but the file's owner can read a file that is made here.
  void Set(const Admin& admin) const;
  /// Error 5 when there is no such person.
  void Remove(const std::string& name) const;

 private:
  /// An empty file that only its owner can read.
  void Make() const;
  /// The host may run as somebody else than who calls this.
  void GiveToFoldersOwner() const;

  const std::string file_;
};

/// The person of that name.
std::optional<Admin> FindAdmin(const std::vector<Admin>& all, const std::string& name);

/// Indexes between commas or blanks, or "*" for all; false for anything else.
bool ReadProfiles(const std::string& text, Admin& admin);
/// Names of rights between commas; false for anything else.
bool ReadRights(const std::string& text, Admin& admin);
/// The inverse of both.
std::string ProfilesText(const Admin& admin);
std::string RightsText(const Admin& admin);

}  // namespace rotacasts::host::web
