// What the command line of the stand-alone host says.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace rotacasts::host {

struct HostOptions {
  std::string folder;  // the host folder, absolute, in the machine's spelling
  std::chrono::nanoseconds minute = std::chrono::minutes(1);  // how long a minute lasts
  std::string administrator = "console";    // who the console's changes come from, for the log
  bool sharedLog = false;                   // log them for the whole host, not for each profile
  std::string web = {};                     // where the page is served, ADDRESS:PORT; empty: not
  std::vector<std::int32_t> profiles = {};  // the ones to preview; none: all
  bool fix = false;                         // convert what check finds to be UTF-8
};

}  // namespace rotacasts::host
