// The one error reporter and message-box routine.
#pragma once

#include <cstdint>
#include <string>

#include "services/host_services.h"
#include "services/profile_tables.h"

namespace rotacasts {

enum class ReportKind : std::uint8_t { Success = 1, Failure = 2, Error = 4 };

/// Logs an error, sends a report when the host's configuration asks for one, and tells the
/// administrator in a message box. Nothing thrown leaves it.
class ErrorReporter {
 public:
  ErrorReporter(HostServices& services, ProfileTables& tables)
      : services_(services), tables_(tables) {}

  /// Kind Success or Failure: shows `text` in a box titled "Success" or "Failed!"; `error` is null.
  /// Kind Error: reports `error` of the procedure named `text`, which worked for `profileIndex` and
  /// failed at `line`; `quiet` suppresses the box.
  void ReportError(ReportKind kind, const std::string& text, const RuntimeError* error,
                   std::int32_t profileIndex, std::int32_t line, bool quiet);

  /// A plain notice to the administrator.
  void Notify(ReportKind kind, const std::string& text) {
    ReportError(kind, text, nullptr, 0, 0, false);
  }

 private:
  struct Incident;
  void ReportIncident(Incident& incident, bool quiet);
  std::string SendReport(const Incident& incident);
  void Show(const std::string& text, const std::string& title);
  void ShowError(const std::string& text);

  HostServices& services_;
  ProfileTables& tables_;
};

}  // namespace rotacasts
