// The options of the stand-alone host's command line.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

struct HostOptions {
  std::string folder;  // the host folder, absolute, in the system's form
  std::chrono::nanoseconds minute = std::chrono::minutes(1);  // the length of a minute
  std::string administrator = "console";                      // the console's name in the log
  bool sharedLog = false;  // one log for the host instead of one per profile
  std::string web = {};    // where to serve the page, ADDRESS:PORT; empty for nowhere
  std::vector<std::string> webHosts = {};   // names by which browsers may ask for it
  std::vector<std::int32_t> profiles = {};  // which to preview; empty for all
  bool fix = false;                         // convert UTF-8 files that check finds
};

}  // namespace rotacasts::host
