// The system's services.
#pragma once

#include <functional>
#include <string>

namespace rotacasts::host {

/// One service of this machine. Errors of all members: 70, with the way out, without the rights of
/// an administrator; 53 if there is no such service; else 57 with the system's reason.
class Service {
 public:
  explicit Service(std::wstring name) : name_(std::move(name)) {}

  /// How a service runs.
  struct Setup {
    std::wstring shownName;    // in the list of services
    std::wstring description;  // there too
    std::wstring command;      // its command line
    std::wstring account;   // empty for the system's own, of whose rights it keeps only those below
    std::wstring password;  // of an account that has one
  };
  /// Installs it, or changes one that is there: it starts with the machine, and again a while after
  /// it has crashed. As the system's own account it may read every process (SeDebugPrivilege), and
  /// pass through folders (SeChangeNotifyPrivilege), and nothing more.
  void Install(const Setup& setup) const;
  /// Stops it and takes it out of the list.
  void Remove() const;
  void Start() const;
  /// Waits until it has ended.
  void Stop() const;
  /// "running", "stopped", "starting", "stopping" or "not installed".
  std::string State() const;

 private:
  const std::wstring name_;
};

/// Lets the system's service manager run `work` in this process, which it has started for the
/// service. Returns false if a person has started the process. `work` returns an exit status; one
/// for which `isCrash` is true makes the manager start the service again.
bool RunAsService(const std::wstring& name, std::function<int()> work,
                  std::function<bool(int status)> isCrash);

/// Enables this process to read every process, if its account may.
void EnableReadingProcesses();

}  // namespace rotacasts::host
