#include "console/console_protocol.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "base/text.h"
#include "console/console.h"
#include "console/plain_output.h"
#include "host/complaint.h"

namespace rotacasts::host {

ConsoleAnswer AnswerCommand(ServerHost& host, const std::string& line) {
  std::ostringstream text;
  PlainOutput plain(text);
  const Console::Outcome outcome = Console(host, plain).Execute(line);
  return {std::move(text).str() + (outcome == Console::Outcome::Refused ? kRefused : kDone),
          outcome == Console::Outcome::Quit};
}

bool AnswerPrinter::Print(std::string_view piece) {
  const char end[] = {kDone, kRefused};
  const std::size_t size = std::min(piece.find_first_of(end, 0, sizeof end), piece.size());
  out_ << piece.substr(0, size) << std::flush;
  if (size == piece.size()) return false;
  wasRefused_ = wasRefused_ || piece[size] == kRefused;
  return true;
}

bool IsLeaving(std::string_view line) {
  const std::string_view command = TrimSpaces(line);
  return command == "quit" || command == "exit";
}

void ComplainOfNoHost(const std::string& hostFolder) {
  throw Complaint("no host runs in " + hostFolder + "; \"rotacasts-host run --host-folder " +
                  hostFolder + "\" starts one, or its service does");
}

}  // namespace rotacasts::host
