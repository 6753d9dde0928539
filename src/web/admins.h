// Who may sign in to the page and what each may do: settings/admins.ini.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "services/host_folder.h"

namespace rotacasts::host::web {

/// The plugin's privileges: to add, move, delete and say messages; to change switch and interval.
enum class Right { ChangeMessages, ChangeSettings };
inline constexpr std::array kRights = {Right::ChangeMessages, Right::ChangeSettings};
/// The plugin's name for it.
std::string NameOf(Right right);

struct Admin {
  std::string name;
  std::string password;  // its Argon2id hash
  bool seesAll = false;  // every profile, including future ones
  std::set<std::int32_t> profiles;
  std::set<Right> rights;

  bool Sees(std::int32_t profile) const { return seesAll || profiles.contains(profile); }
  bool May(Right right) const { return rights.contains(right); }
  bool operator==(const Admin&) const = default;
};

/// The file has a section for each person, named after them; letter case does not matter. Every
/// call reads the file again. Errors: those of reading and writing the file.
class Admins {
 public:
  explicit Admins(const std::string& hostFolder) : file_(HostFolder(hostFolder).Administrators()) {}

  /// The people with a password, in file order. Invalid indexes and rights are left out.
  std::vector<Admin> All() const;
  /// Adds the person or replaces their entry. A file that is created here is readable only by its
  /// owner. Errors: 5 if the name cannot be a section's.
  void Set(const Admin& admin) const;
  /// Removes the person. Errors: 5 if there is no such person.
  void Remove(const std::string& name) const;

 private:
  /// Creates an empty file that only its owner can read.
  void Make() const;

  const std::string file_;
};

/// The person of that name; nullopt if there is none.
std::optional<Admin> FindAdmin(const std::vector<Admin>& all, const std::string& name);

/// Reads indexes separated by commas or blanks, or "*" for all, into `admin`; false for anything
/// else.
bool ReadProfiles(const std::string& text, Admin& admin);
/// Reads names of rights separated by commas into `admin`; false for anything else.
bool ReadRights(const std::string& text, Admin& admin);
/// The inverse of these two.
std::string ProfilesText(const Admin& admin);
std::string RightsText(const Admin& admin);

}  // namespace rotacasts::host::web
