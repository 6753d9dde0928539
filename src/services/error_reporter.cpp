#include "services/error_reporter.h"

#include "base/conversions.h"
#include "services/host_folder.h"

namespace rotacasts {
namespace {

// An error box runs a message loop in which the timers go on. An error on every tick would
// therefore stack up unanswered boxes until the host's stack overflows. With this many boxes open,
// errors are only logged and reported. Notices are not limited because nothing else records them.
constexpr int kMostOpenBoxes = 8;

constexpr const char* kReportSent = "\r\n\r\nError Report Sent: Yes";
constexpr const char* kReportFailed = "\r\n\r\nError Report Sent: Failed!";
constexpr const char* kReportNotWanted = "\r\n\r\nError Report Sent: No";

/// The text of the error box, without the outcome of the report.
std::string BoxText(const Failure& failure) {
  return "Error Line: " + std::to_string(failure.line) + "\r\nError " +
         std::to_string(failure.error.number) + ": " + failure.error.description +
         "\r\nDLL: " + kModuleFile + "\r\nFunction/Sub: " + failure.procedure;
}

}  // namespace

void ErrorReporter::ReportError(const Failure& failure) try {
  Failure logged = failure;  // the log takes references and may change them
  try {
    services_.Utility().LogError(kModuleFile, logged.procedure, logged.error, logged.line);
  } catch (...) {  // nothing is logged: the box is all that is left
    if (!failure.quiet) ShowError(BoxText(failure) + kReportNotWanted);
    return;
  }
  try {
    TellOf(failure, BoxText(failure));
  } catch (...) {
    TellOfNoReport(CurrentRuntimeError());
  }
} catch (...) {  // not even a box could be shown; the host must go on
}

void ErrorReporter::Notify(Outcome outcome, const std::string& text) try {
  Show(text, outcome == Outcome::Success ? "Success" : "Failed!");
} catch (...) {  // no box could be shown; the host must go on
}

void ErrorReporter::TellOfNoReport(const RuntimeError& why) {
  Show(std::to_string(why.number) + ": " + why.description, "tvxRT.dll Error");
}

void ErrorReporter::TellOf(const Failure& failure, const std::string& words) {
  std::string path = HostFolder(services_.HostFolder()).Configuration();
  std::string wanted;
  ResumeNext({ErrorNumber::SubscriptOutOfRange},
             [&] { wanted = services_.Utility().GetIniKey("Settings", "ReportErrors", path); });
  const std::string outcome = ToDouble(wanted) == 1 ? SendReport(failure) : kReportNotWanted;
  if (!failure.quiet) ShowError(words + outcome);
}

std::string ErrorReporter::SendReport(const Failure& failure) {
  HostValue isAffiliate;  // stays empty for a profile without a record
  ResumeNext({ErrorNumber::SubscriptOutOfRange},
             [&] { isAffiliate = tables_.Profiles(failure.profileIndex).IsAffiliate; });
  HostValue report(
      HostValue::Array{std::to_string(failure.error.number), failure.error.description,
                       std::string(kModuleFile) + " " + FormatVersion(services_.Version()),
                       failure.procedure, isAffiliate, failure.line});
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
