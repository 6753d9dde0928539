// The page's requests to the host: a table of routes and the rights that each needs.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>

#include "web/additions.h"
#include "web/http_server.h"
#include "web/live_events.h"
#include "web/passwords.h"
#include "web/sessions.h"
#include "web/snapshots.h"

namespace rotacasts::host::web {

struct Call;

/// Answers requests as docs/web.md describes them. Everything passed by reference must outlive it.
class Api {
 public:
  /// `names` are the host names by which browsers may ask, besides addresses and "localhost". What
  /// people say by hand is printed to `out` with their names, because no other log records it.
  Api(EventLoop& loop, ServerHost& host, Sessions& sessions, std::vector<std::string> names,
      std::ostream& out);

  void Handle(const std::shared_ptr<Exchange>& exchange);
  /// Reads the next part of what the pages follow, so that changes can be sent.
  void Refresh() { snapshots_.RefreshSome(); }
  /// Called when the pages should learn of a change at once.
  std::function<void()> onChange;

 private:
  struct Route;
  static const Route kRoutes[];

  /// Errors: a Refusal if the request names another host.
  void RequireHost(const Request& request) const;
  void Find(const std::shared_ptr<Exchange>& exchange);
  void Admit(const Route& route, Call& call);
  /// The people who may sign in; nobody if the file cannot be read.
  const std::vector<Admin>& People();
  std::optional<Admin> PersonOf(const Request& request);
  /// Errors: a Refusal if the person may not see the profile, or there is none.
  void RequireSeen(const Admin& admin, std::int32_t profile) const;
  /// The answer to a change, once the pages know that there is news.
  Response Changed(std::int32_t profile, const nlohmann::json& answer);
  Response Changed(const Call& call, const std::string& words);
  void AddAll(Call& call, std::vector<std::string> texts);
  /// Ends the person's oldest page where there would be too many. Errors: a Refusal if too many
  /// pages of all people are open.
  std::shared_ptr<Follower> MakeFollower(const Call& call);

  struct Attempt;
  void SignIn(Call& call);
  /// `isRight` is nullopt if the password could not be checked.
  void FinishSignIn(const Attempt& attempt, std::optional<bool> isRight);
  void WhoAmI(Call& call);
  void SignOut(Call& call);
  void ListPlaceholders(Call& call);
  void ListProfiles(Call& call);
  void ShowMessages(Call& call);
  void ShowLog(Call& call);
  void ShowSent(Call& call);
  void Follow(Call& call);
  void Preview(Call& call);
  void Say(Call& call);
  void Add(Call& call);
  void AddList(Call& call);
  void CopyList(Call& call);
  void ChangeText(Call& call);
  void Place(Call& call);
  void Delete(Call& call);
  void Restore(Call& call);
  void Move(Call& call);
  void Switch(Call& call);
  void SetInterval(Call& call);

  ServerHost& host_;
  Sessions& sessions_;
  const std::vector<std::string> names_;
  std::ostream& out_;
  const Admins admins_;
  std::vector<Admin> people_;
  Clock::time_point peopleAt_;
  std::string trouble_;  // why the people could not be read
  Snapshots snapshots_;
  Additions additions_;
  std::vector<std::weak_ptr<Follower>> followers_;  // the oldest first
  SignInBrake brake_;
  KnownBrowsers browsers_;
  PasswordChecks checks_;
  const std::string nobody_;
};

}  // namespace rotacasts::host::web
