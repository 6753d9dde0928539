// The one error reporter and message-box routine.
#pragma once

#include <string>

#include "services/guard.h"
#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

/// The title of a notice.
enum class Outcome { Success, Failure };

/// Logs an error, sends a report when the host's configuration asks for one, and tells the
/// administrator in a message box. Nothing thrown leaves it.
class ErrorReporter final : public ErrorHandler {
 public:
  ErrorReporter(const HostServices& services, const ProfileTables& tables)
      : services_(services), tables_(tables) {}

  void ReportError(const Failure& failure) override;
  /// A plain notice to the administrator: a box titled "Success" or "Failed!".
  void Notify(Outcome outcome, const std::string& text);

 private:
  /// Sends the report, if one is wanted, and shows `words` with what became of it.
  void TellOf(const Failure& failure, const std::string& words);
  std::string SendReport(const Failure& failure);
  void Show(const std::string& text, const std::string& title);
  void ShowError(const std::string& text);

  const HostServices& services_;
  const ProfileTables& tables_;
};

}  // namespace rotacasts
