#include "program/web_commands.h"

#include <memory>

#include "base/text.h"
#include "console/text_table.h"
#include "host/complaint.h"
#include "siblings/file_layer.h"
#include "terminal/hidden_input.h"
#include "web/admins.h"
#include "web/passwords.h"

namespace rotacasts::host {
namespace {

using web::Admin;
using web::Admins;

/// Reads a password: twice on a terminal, else one line of the input. Errors: 5 if the two differ
/// or the password is too short or too long.
std::string AskForPassword(std::ostream& out) {
  HiddenInput input;
  if (input.IsTerminal()) out << "Password: " << std::flush;
  std::string password = input.Line();
  if (input.IsTerminal()) {
    out << "\nOnce more: " << std::flush;
    const std::string again = input.Line();
    out << "\n" << std::flush;
    if (again != password) throw Complaint("the two are not the same; nothing was changed");
  }
  if (!IsValidUtf8(password) || CountCharacters(password) < web::kShortestPassword ||
      password.size() > web::kLongestPassword) {
    throw Complaint("a password has " + std::to_string(web::kShortestPassword) +
                    " letters at least and " + std::to_string(web::kLongestPassword) +
                    " bytes at most; nothing was changed");
  }
  return password;
}

/// The administrators of a folder that is there. Errors: 76.
Admins AdminsIn(const std::string& hostFolder) {
  if (MachineFiles().FolderExists(hostFolder)) return Admins(hostFolder);
  throw RuntimeError(ErrorNumber::PathNotFound,
                     "there is no folder " + hostFolder + "; name the host's folder");
}

std::string RightsInWords(const Admin& admin) {
  const std::string rights = web::RightsText(admin);
  return rights.empty() ? "none, to look on" : rights;
}

struct AdminOptions {
  std::string name;
  std::optional<std::string> profiles;
  std::optional<std::string> rights;
};

/// Sets an administrator's password and rights. A new one may do everything unless the options say
/// otherwise; an existing one keeps what they leave out, also the password.
void SetAdmin(const Admins& admins, const AdminOptions& wanted, std::ostream& out) {
  Admin admin =
      web::FindAdmin(admins.All(), wanted.name)
          .value_or(Admin{wanted.name, {}, true, {}, {web::kRights.begin(), web::kRights.end()}});
  if (wanted.profiles && !web::ReadProfiles(*wanted.profiles, admin)) {
    throw Complaint("--profiles takes indexes such as 1,4 or \"*\" for all");
  }
  if (wanted.rights && !web::ReadRights(*wanted.rights, admin)) {
    std::string names;
    for (const web::Right right : web::kRights) names += "\n  " + web::NameOf(right);
    throw Complaint("--rights takes these, separated by commas, or \"\" for none:" + names);
  }
  const bool isJustThat = !admin.password.empty() && (wanted.profiles || wanted.rights);
  if (!isJustThat) admin.password = web::HashPassword(AskForPassword(out));
  admins.Set(admin);
  out << admin.name << " may sign in; profiles: " << web::ProfilesText(admin)
      << "; rights: " << RightsInWords(admin) << "\n";
}

void ListAdmins(const Admins& admins, std::ostream& out) {
  TextTable table({"Name", "Profiles", "Rights"});
  for (const Admin& admin : admins.All()) {
    table.Add({admin.name, web::ProfilesText(admin), RightsInWords(admin)});
  }
  table.Print(out);
}

}  // namespace

void AddPageOptions(CLI::App& run, HostOptions& options) {
  run.add_option("--web", options.web,
                 "serve the page for administrators here, such as 127.0.0.1:8480");
  run.add_option("--web-host", options.webHosts,
                 "a name by which browsers ask for the page, such as that of its proxy");
}

void AddWebCommands(CLI::App& program, CLI::App& run, HostOptions& options, std::ostream& out,
                    const std::function<void(CLI::App&)>& addFolder) {
  AddPageOptions(run, options);
  CLI::App* admin = program.add_subcommand("admin", "Say who may sign in to the page");
  admin->require_subcommand(1);
  const auto wanted = std::make_shared<AdminOptions>();
  const auto add = [&](const char* name, const char* help, std::function<void()> command) {
    CLI::App* added = admin->add_subcommand(name, help);
    addFolder(*added);
    added->callback(std::move(command));
    return added;
  };
  CLI::App* set = add(
      "set",
      "Let somebody sign in, or change what they may do; asks for the password unless one is kept",
      [&options, &out, wanted] { SetAdmin(AdminsIn(options.folder), *wanted, out); });
  set->add_option("NAME", wanted->name)->required();
  set->add_option("--profiles", wanted->profiles, "indexes such as 1,4; all without it");
  set->add_option("--rights", wanted->rights,
                  "\"Add/Remove Rotacasts, Change Rotacasts Settings\"; both without it");
  add("remove", "Let somebody sign in no longer",
      [&options, &out, wanted] {
        AdminsIn(options.folder).Remove(wanted->name);
        out << wanted->name << " may no longer sign in\n";
      })
      ->add_option("NAME", wanted->name)
      ->required();
  add("list", "List those who may sign in",
      [&options, &out] { ListAdmins(AdminsIn(options.folder), out); });
}

}  // namespace rotacasts::host
