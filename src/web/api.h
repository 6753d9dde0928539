// The page's requests to the host: a table of routes and the rights that each needs.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>

#include "web/http_server.h"
#include "web/passwords.h"
#include "web/sessions.h"
#include "web/snapshots.h"

namespace rotacasts::host::web {

struct Call;

/// Answers requests as docs/web.md describes them. Everything passed by reference must outlive it.
class Api {
 public:
  /// What people say by hand is printed to `out` with their names, because no other log records it.
  Api(EventLoop& loop, ServerHost& host, Sessions& sessions, std::ostream& out);

  void Handle(const std::shared_ptr<Exchange>& exchange);
  /// Reads the next part of what the pages follow, so that changes can be sent.
  void Refresh() { snapshots_.RefreshSome(); }
  /// Called when the pages should learn of a change at once.
  std::function<void()> onChange;

 private:
  struct Route;
  static const Route kRoutes[];

  void Find(const std::shared_ptr<Exchange>& exchange);
  void Admit(const Route& route, Call& call);
  /// The people who may sign in; nobody if the file cannot be read.
  const std::vector<Admin>& People();
  std::optional<Admin> PersonOf(const Request& request);
  Response Changed(const Call& call, const std::string& words);

  void SignIn(Call& call);
  void WhoAmI(Call& call);
  void SignOut(Call& call);
  void ListPlaceholders(Call& call);
  void ListProfiles(Call& call);
  void ShowMessages(Call& call);
  void ShowLog(Call& call);
  void Follow(Call& call);
  void Preview(Call& call);
  void Say(Call& call);
  void Add(Call& call);
  void Delete(Call& call);
  void Restore(Call& call);
  void Move(Call& call);
  void Switch(Call& call);
  void SetInterval(Call& call);

  ServerHost& host_;
  Sessions& sessions_;
  std::ostream& out_;
  const Admins admins_;
  std::vector<Admin> people_;
  Clock::time_point peopleAt_;
  std::string trouble_;  // why the people could not be read
  Snapshots snapshots_;
  SignInBrake brake_;
  PasswordChecks checks_;
  const std::string nobody_;
};

}  // namespace rotacasts::host::web
