#include "console/console.h"

#include <algorithm>
#include <optional>

#include "base/text.h"
#include "broadcast/placeholders.h"
#include "console/status_table.h"
#include "console/text_table.h"
#include "files/native_files.h"
#include "host/complaint.h"
#include "siblings/plain_words.h"
#include "terminal/terminal.h"

namespace rotacasts::host {

/// The arguments on a command's line.
class Console::Arguments {
 public:
  Arguments(std::string_view usage, std::string_view rest) : usage_(usage), rest_(rest) {}

  /// The next word. Errors: 5, with the command's usage, if there is none.
  std::string Word() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
    const std::string_view word = rest_.substr(0, rest_.find(' '));
    if (word.empty()) RaiseUsage();
    rest_.remove_prefix(word.size());
    return std::string(word);
  }
  /// The next word as a whole decimal number, such as a profile index. Errors: 5.
  std::int32_t Number() {
    const std::string word = Word();
    if (const std::optional<std::int32_t> number = WholeNumber(word)) return *number;
    throw Complaint("\"" + word + "\" is no whole number; usage: " + std::string(usage_));
  }
  /// The next word as a number, which must be the last. Errors: 5.
  std::int32_t LastNumber() {
    const std::int32_t number = Number();
    End();
    return number;
  }
  /// The next word as a message's number: people count from 1, positions from 0. Errors: 5.
  std::int32_t Position() {
    const std::int32_t number = Number();
    if (number > 0) return number - 1;
    throw Complaint("there is no message " + std::to_string(number) + "; the first one is 1");
  }
  /// The same, which must be the last word.
  std::int32_t LastPosition() {
    const std::int32_t position = Position();
    End();
    return position;
  }
  bool IsAtEnd() const { return rest_.find_first_not_of(' ') == rest_.npos; }
  /// Errors: 5 if another word follows.
  void End() {
    if (IsAtEnd()) return;
    throw Complaint("\"" + Word() + "\" is too much; usage: " + std::string(usage_));
  }
  /// Everything after one blank, unchanged; nullopt if not even the blank is there.
  std::optional<std::string> Rest() const {
    if (rest_.empty()) return std::nullopt;
    return std::string(rest_.substr(1));
  }
  /// Like Rest, but must not be empty. Errors: 5.
  std::string Text() const {
    if (rest_.size() < 2) RaiseUsage();
    return *Rest();
  }

 private:
  [[noreturn]] void RaiseUsage() const { throw Complaint("usage: " + std::string(usage_)); }

  std::string_view usage_;
  std::string_view rest_;
};

struct Console::Command {
  std::string_view usage;  // its first word is the command
  std::string_view help;
  void (*run)(Console&, Arguments&);

  std::string_view Name() const { return usage.substr(0, usage.find(' ')); }
};

const Console::Command Console::kCommands[] = {
    {"status", "a line a profile: game, switch, interval, ticks counted, next message",
     [](Console& console, Arguments& arguments) {
       arguments.End();
       console.PrintAllStatus();
     }},
    {"messages PROFILE", "list its messages and what each says now",
     [](Console& console, Arguments& arguments) { console.PrintMessages(arguments.LastNumber()); }},
    {"add PROFILE TEXT", "add a message at the end of its list",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.AddMessage(profile, arguments.Text()) << "\n";
     }},
    {"change PROFILE NUMBER TEXT", "give a message another text",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       const std::int32_t position = arguments.Position();
       console.out_ << console.host_.ChangeMessage(profile, position, arguments.Text()) << "\n";
     }},
    {"move PROFILE NUMBER TO", "move a message to another place: 1 is the first",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       const std::int32_t position = arguments.Position();
       const std::int32_t to = arguments.LastPosition();
       console.out_ << console.host_.PlaceMessage(profile, position, to) << "\n";
     }},
    {"delete PROFILE NUMBER", "delete a message",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.DeleteMessage(profile, arguments.LastPosition()) << "\n";
     }},
    {"up PROFILE NUMBER", "move a message one place up",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.MoveMessage(profile, arguments.LastPosition(), true) << "\n";
     }},
    {"down PROFILE NUMBER", "move a message one place down",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.MoveMessage(profile, arguments.LastPosition(), false) << "\n";
     }},
    {"enable PROFILE 0|1", "switch its broadcasts off or on",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       const std::int32_t value = arguments.LastNumber();
       if (value != 0 && value != 1) throw Complaint("not switched: give 1 for on, 0 for off");
       console.out_ << console.host_.SetSwitch(profile, value == 1) << "\n";
     }},
    {"interval PROFILE MINUTES", "set the minutes between two messages, 0 to 30",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.SetInterval(profile, arguments.LastNumber()) << "\n";
     }},
    {"say PROFILE TEXT", "say a text now, once; a placeholder with what it says now",
     [](Console& console, Arguments& arguments) {
       const std::int32_t profile = arguments.Number();
       console.out_ << console.host_.Say(profile, arguments.Text()).words << "\n";
     }},
    {"sent [PROFILE]", "the latest messages sent: when, and what became of them",
     [](Console& console, Arguments& arguments) {
       console.PrintSent(arguments.IsAtEnd() ? 0 : arguments.LastNumber());
     }},
    {"placeholders [PROFILE]", "list them, and what each says now for it, or for the first game",
     [](Console& console, Arguments& arguments) {
       console.PrintPlaceholders(arguments.IsAtEnd() ? 0 : arguments.LastNumber());
     }},
    {"show PROFILE", "read its profile.ini again, load the window for it and start it",
     [](Console& console, Arguments& arguments) { console.host_.Show(arguments.LastNumber()); }},
    {"hide", "hide the window; the broadcasts go on",
     [](Console& console, Arguments& arguments) {
       arguments.End();
       console.host_.Hide();
     }},
    {"disable PROFILE", "stop one profile",
     [](Console& console, Arguments& arguments) { console.host_.Disable(arguments.LastNumber()); }},
    {"unload", "unload the window and stop every profile",
     [](Console& console, Arguments& arguments) {
       arguments.End();
       console.host_.Unload();
     }},
    {"reload", "read every profile.ini and message file again: added, changed, removed ones",
     [](Console& console, Arguments& arguments) {
       arguments.End();
       console.PrintReloaded();
     }},
    {"remote PROFILE OPERATION [DATA]", "pass DATA unchanged; print the raw reply",
     [](Console& console, Arguments& arguments) { console.PrintRemote(arguments); }},
    {"help", "this list", [](Console& console, Arguments&) { console.PrintHelp(); }},
    {"quit", "leave the console; at the host's own one this ends the host",
     [](Console& console, Arguments& arguments) {
       arguments.End();
       console.hasQuit_ = true;
     }},
};

void Console::Start() {
  const std::size_t started = host_.LoadEveryProfile();
  out_ << "profiles started: " << started << "; \"help\" lists the commands\n" << std::flush;
}

Console::Outcome Console::Execute(const std::string& line) {
  Outcome outcome = Outcome::Refused;
  try {
    Run(std::string_view(line).substr(std::min(line.find_first_not_of(' '), line.size())));
    outcome = hasQuit_ ? Outcome::Quit : Outcome::Done;
  } catch (...) {
    out_ << PlainWords(CurrentRuntimeError()) << "\n";
  }
  out_ << std::flush;
  return outcome;
}

void Console::Run(std::string_view line) {
  if (line.size() > kLongestLine) {
    throw Complaint("the line has more than " + std::to_string(kLongestLine) +
                    " bytes; nothing was done");
  }
  const std::string_view word = line.substr(0, line.find(' '));
  if (word.empty()) return;
  const std::string_view name = word == "exit" ? "quit" : word == "?" ? "help" : word;
  for (const Command& command : kCommands) {
    if (command.Name() != name) continue;
    Arguments arguments(command.usage, line.substr(word.size()));
    return command.run(*this, arguments);
  }
  throw Complaint("\"" + std::string(word) + "\" is no command; \"help\" lists them");
}

void Console::PrintHelp() const {
  TextTable table({"Command", "What it does"});
  for (const auto& [usage, help] : Commands()) table.Add({usage, help});
  table.Print(out_);
}

std::vector<std::pair<std::string, std::string>> Console::Commands() {
  std::vector<std::pair<std::string, std::string>> all;
  for (const Command& command : kCommands) all.emplace_back(command.usage, command.help);
  return all;
}

void Console::PrintMessages(std::int32_t index) {
  const MessageList list = host_.MessagesOf(index);
  const ProfileStatus status = host_.StatusOf(index);
  PrintMessageTable(out_, host_.Previews(), status.profile, list);
  out_ << status.profile.Label() << " is switched " << (status.isSwitchedOn ? "on" : "off")
       << (status.isStopped ? ", but stopped" : "") << "; a message every " << status.interval
       << " min\n";
}

void Console::PrintAllStatus() {
  std::vector<ProfileStatus> all;
  for (const auto& [index, profile] : host_.Profiles().All()) all.push_back(host_.StatusOf(index));
  PrintStatus(out_, host_.Previews(), all);
}

void Console::PrintSent(std::int32_t profile) {
  constexpr const char* kOutcomes[] = {"under way", "sent", "not sent"};
  if (profile != 0) host_.Profiles().At(profile);
  TextTable table({"Time", "Profile", "Outcome", "Text"});
  bool isEmpty = true;
  for (const SentText& sent : host_.Profiles().Components().GetChat().Latest()) {
    if (profile != 0 && sent.profile != profile) continue;
    isEmpty = false;
    const std::string reason = sent.reason.empty() ? "" : " (" + sent.reason + ")";
    table.Add({FormatTime(sent.time), std::to_string(sent.profile),
               kOutcomes[static_cast<int>(sent.outcome)], sent.text + reason});
  }
  if (isEmpty) {
    out_ << "nothing has been sent yet\n";
  } else {
    table.Print(out_);
  }
}

std::int32_t Console::FirstRunning() {
  const auto& all = host_.Profiles().All();
  for (const auto& [index, profile] : all) {
    if (host_.Previews().GameOf(profile).state == Preview::Game::State::Running) return index;
  }
  return all.empty() ? 0 : all.begin()->first;
}

void Console::PrintPlaceholders(std::int32_t index) {
  if (index == 0) index = FirstRunning();
  const ProfileSettings& profile = host_.Profiles().At(index);
  const Preview::Game game = host_.Previews().GameOf(profile);
  if (!game.problem.empty()) out_ << game.problem << "\n";
  TextTable table({"Placeholder", "Says now for " + profile.Label()});
  for (const std::string& placeholder : AllPlaceholders()) {
    table.Add({placeholder, host_.Previews().TextOf(profile, game, placeholder).Shown()});
  }
  table.Print(out_);
}

void Console::PrintReloaded() {
  const HostProfiles::Changes changes = host_.Reload();
  const auto print = [this](const char* what, const std::vector<std::int32_t>& indexes) {
    for (const std::int32_t index : indexes) out_ << what << ": profile " << index << "\n";
  };
  print("added", changes.added);
  print("changed", changes.changed);
  print("removed", changes.removed);
  out_ << "read again; profiles: " << host_.Profiles().All().size() << "\n";
}

void Console::PrintRemote(Arguments& arguments) {
  const std::int32_t profile = arguments.Number();
  const std::string operation = arguments.Word();
  const std::optional<std::string> data = arguments.Rest();
  const HostValue value = data ? HostValue(*data) : HostValue(HostValue::Missing{});
  const HostedPlugin::Reply reply = host_.Remote(profile, RemoteOperationOf(operation), value);
  for (const std::string& problem : reply.problems) out_ << problem << "\n";
  out_ << '"' << reply.text << "\"\n";
}

bool PrintMessageTable(std::ostream& out, Preview& preview, const ProfileSettings& profile,
                       const MessageList& list) {
  const Preview::Game game = preview.GameOf(profile);
  const bool isReached = game.state != Preview::Game::State::Unreachable;
  if (!isReached) out << game.problem << "\n";
  if (list.messages.empty()) {
    out << profile.Label() << " has no messages in " << NativePath(list.path).string() << "\n";
    return isReached;
  }
  TextTable table({"Number", "Message", "Says now"});
  for (std::size_t i = 0; i < list.messages.size(); ++i) {
    const std::string& message = list.messages[i].text;
    table.Add({std::to_string(i + 1), message, preview.TextOf(profile, game, message).Shown()});
  }
  table.Print(out);
  return isReached;
}

}  // namespace rotacasts::host
