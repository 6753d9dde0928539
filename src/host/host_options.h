// What the person who starts the stand-alone host decides.
#pragma once

#include <chrono>
#include <string>

namespace rotacasts::host {

struct HostOptions {
  std::string folder;  // the host folder, absolute, in the machine's spelling
  std::chrono::nanoseconds minute = std::chrono::minutes(1);  // how long a minute lasts
  std::string administrator = "console";  // who the remote commands come from, for the log
  bool sharedLog = false;                 // log them for the whole host, not for each profile
};

}  // namespace rotacasts::host
