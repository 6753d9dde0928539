// The system's event log.
#pragma once

#include <streambuf>
#include <string>

#include "com/windows_api.h"

namespace rotacasts::host {

/// Tells the system which program explains this program's events: `program` itself, whose resources
/// have the texts. Without the rights of an administrator nothing changes.
void RegisterEvents(const std::wstring& program);
void UnregisterEvents();

/// A stream buffer that makes each line an event.
class EventLog final : public std::streambuf {
 public:
  EventLog();
  ~EventLog() override;
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

 protected:
  int overflow(int character) override;

 private:
  void Report();

  const HANDLE log_;
  std::string line_;
};

}  // namespace rotacasts::host
