// Reports errors and shows notices to the administrator.
#pragma once

#include <string>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// The title of a notice.
enum class Outcome { Success, Failure };

/// Logs an error, sends a report if the host's configuration asks for one, and shows the
/// administrator a message box. Never throws.
class ErrorReporter : public ErrorHandler {
 public:
  ErrorReporter(const HostServices& services, const ProfileTables& tables)
      : services_(services), tables_(tables) {}

  void ReportError(const Failure& failure) override;
  /// Shows the administrator a notice in a box titled "Success" or "Failed!".
  void Notify(Outcome outcome, const std::string& text);

 protected:
  /// Called when an error was logged, but then reporting it failed: shows why in a box.
  virtual void TellOfNoReport(const RuntimeError& why);

 private:
  /// Sends a report if the configuration asks for one, then shows `words` and the outcome.
  void TellOf(const Failure& failure, const std::string& words);
  std::string SendReport(const Failure& failure);
  void Show(const std::string& text, const std::string& title);
  void ShowError(const std::string& text);

  const HostServices& services_;
  const ProfileTables& tables_;
};

}  // namespace rotacasts
