#include "services/error_reporter.h"

#include "base/conversions.h"
#include "services/guard.h"

namespace rotacasts {
namespace {

// An error box runs a message loop in which the timers go on, so a fault that comes back with every
// tick would pile up box upon box, unanswered, until the host's stack is gone. Beyond this many
// open boxes an error is logged and reported only. Any other box says what nothing else says.
constexpr int kMostOpenBoxes = 8;

constexpr const char* kReportSent = "\r\n\r\nError Report Sent: Yes";
constexpr const char* kReportFailed = "\r\n\r\nError Report Sent: Failed!";
constexpr const char* kReportNotWanted = "\r\n\r\nError Report Sent: No";

}  // namespace

struct ErrorReporter::Incident {
  std::string procedure;
  RuntimeError error;
  std::int32_t profileIndex;
  std::int32_t line;
  /// What the administrator is told; the outcome of the report is appended to it.
  std::string text;
};

void ErrorReporter::ReportError(ReportKind kind, const std::string& text, const RuntimeError* error,
                                std::int32_t profileIndex, std::int32_t line, bool quiet) try {
  switch (kind) {
    case ReportKind::Success:
      return Show(text, "Success");
    case ReportKind::Failure:
      return Show(text, "Failed!");
    case ReportKind::Error:
      break;
  }
  if (error == nullptr) return;
  Incident incident{text, *error, profileIndex, line,
                    "Error Line: " + std::to_string(line) + "\r\nError " +
                        std::to_string(error->number) + ": " + error->description +
                        "\r\nDLL: " + kModuleFile + "\r\nFunction/Sub: " + text};
  try {
    services_.Utility().LogError(kModuleFile, incident.procedure, incident.error, incident.line);
  } catch (...) {  // without a log the administrator's box is all that is left
    if (!quiet) ShowError(incident.text + kReportNotWanted);
    return;
  }
  try {
    ReportIncident(incident, quiet);
  } catch (...) {
    const RuntimeError second = CurrentRuntimeError();
    Show(std::to_string(second.number) + ": " + second.description, "tvxRT.dll Error");
  }
} catch (...) {  // not even a box could be shown; the host lives on
}

void ErrorReporter::ReportIncident(Incident& incident, bool quiet) {
  std::string path = services_.HostFolder() + "\\settings\\config.ini";
  std::string wanted;
  ResumeNext({ErrorNumber::SubscriptOutOfRange},
             [&] { wanted = services_.Utility().GetIniKey("Settings", "ReportErrors", path); });
  incident.text += ToDouble(wanted) == 1 ? SendReport(incident) : kReportNotWanted;
  if (!quiet) ShowError(incident.text);
}

std::string ErrorReporter::SendReport(const Incident& incident) {
  Variant isAffiliate;  // stays empty for a profile without a record
  ResumeNext({ErrorNumber::SubscriptOutOfRange},
             [&] { isAffiliate = tables_.Profiles(incident.profileIndex).IsAffiliate; });
  Variant report(Variant::Array{std::to_string(incident.error.number), incident.error.description,
                                std::string(kModuleFile) + " " + FormatVersion(services_.Version()),
                                incident.procedure, isAffiliate, incident.line});
  bool delivered = false;
  ResumeNext({ErrorNumber::SubscriptOutOfRange},
             [&] { delivered = services_.Utility().SendErrorReport(report); });
  return delivered ? kReportSent : kReportFailed;
}

void ErrorReporter::Show(const std::string& text, const std::string& title) {
  services_.Toolkit().ShowMessageBox(text, title);
}

void ErrorReporter::ShowError(const std::string& text) {
  if (services_.Toolkit().OpenMessageBoxes() < kMostOpenBoxes) Show(text, "DLL Error!");
}

}  // namespace rotacasts
