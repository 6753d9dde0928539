#include "program/console_talk.h"

#include <iostream>

#include "base/word_list.h"
#include "console/console_protocol.h"
#include "console/plain_output.h"
#include "console/win32/console_pipe.h"
#include "terminal/terminal.h"
#include "terminal/win32/console_input.h"

namespace rotacasts::host {
namespace {

/// Asks for every line that is typed. False if the host ended the connection.
bool AskEverything(PipeToConsole& host, std::ostream& out) {
  const char* const prompt = IsOnTerminal() ? "rotacasts> " : "";
  ConsoleReader lines;
  for (;;) {
    out << prompt << std::flush;
    const std::optional<std::string> line = lines.Next();
    if (!line || IsLeaving(*line)) return true;
    if (!host.Ask(*line)) return false;
  }
}

}  // namespace

int TalkToHost(const std::string& hostFolder, const std::vector<std::string>& words) {
  PlainOutput out(std::cout);
  PipeToConsole host(hostFolder, out);
  const bool isThere = words.empty() ? AskEverything(host, out) : host.Ask(Join(words, " "));
  if (isThere) return host.WasRefused() ? kRefusedStatus : 0;
  out << kConnectionEnded << std::flush;
  return kNoHostStatus;
}

}  // namespace rotacasts::host
