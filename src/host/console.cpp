#include "host/console.h"

#include <algorithm>
#include <optional>

#include "base/conversions.h"
#include "host/terminal.h"

namespace rotacasts::host {
namespace {

/// What follows a command's name on its line.
class Arguments {
 public:
  Arguments(std::string_view usage, std::string_view rest) : usage_(usage), rest_(rest) {}

  /// The next word. Error 5, with the command's usage, when there is none.
  std::string Word() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
    const std::string_view word = rest_.substr(0, rest_.find(' '));
    if (word.empty()) RaiseUsage();
    rest_.remove_prefix(word.size());
    return std::string(word);
  }
  /// The next word as a whole number, such as a profile index or a position.
  std::int32_t Number() {
    const std::string word = Word();
    if (!IsNumeric(word)) RaiseUsage();
    return ToLong(word);
  }
  /// All that follows one blank, as it stands; nothing when not even the blank is there.
  std::optional<std::string> Rest() const {
    if (rest_.empty()) return std::nullopt;
    return std::string(rest_.substr(1));
  }
  /// The same, where there must be something.
  std::string Text() const {
    if (rest_.size() < 2) RaiseUsage();
    return *Rest();
  }

 private:
  [[noreturn]] void RaiseUsage() const { throw Complaint("usage: " + std::string(usage_)); }

  std::string_view usage_;
  std::string_view rest_;
};

}  // namespace

struct Console::Command {
  std::string_view usage;  // its first word is the command
  std::string_view help;
  void (*run)(Console&, Arguments);

  std::string_view Name() const { return usage.substr(0, usage.find(' ')); }
};

const Console::Command Console::kCommands[] = {
    {"show PROFILE", "read its profile.ini anew, load the window for it and start it",
     [](Console& console, Arguments arguments) { console.host_.Show(arguments.Number()); }},
    {"hide", "hide the window; the broadcasts go on",
     [](Console& console, Arguments) { console.host_.Hide(); }},
    {"unload", "unload the window and stop every profile",
     [](Console& console, Arguments) { console.host_.Unload(); }},
    {"disable PROFILE", "stop one profile",
     [](Console& console, Arguments arguments) { console.host_.Disable(arguments.Number()); }},
    {"messages PROFILE", "list its messages and what each says now",
     [](Console& console, Arguments arguments) {
       console.host_.PrintMessages(arguments.Number());
     }},
    {"add PROFILE TEXT", "add a message at the end of its list",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.AddMessage(profile, arguments.Text());
     }},
    {"delete PROFILE POSITION", "delete a message",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.DeleteMessage(profile, arguments.Number());
     }},
    {"up PROFILE POSITION", "move a message one place up",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.MoveMessage(profile, arguments.Number(), true);
     }},
    {"down PROFILE POSITION", "move a message one place down",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.MoveMessage(profile, arguments.Number(), false);
     }},
    {"enable PROFILE 0|1", "switch its broadcasts off or on",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.SetOption(profile, kEnableKey, arguments.Word());
     }},
    {"interval PROFILE MINUTES", "set the minutes between two messages",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       console.host_.SetOption(profile, kIntervalKey, arguments.Word());
     }},
    {"remote PROFILE OPERATION [DATA]", "pass DATA as it stands; print the raw reply",
     [](Console& console, Arguments arguments) {
       const std::int32_t profile = arguments.Number();
       const std::string operation = arguments.Word();
       const std::optional<std::string> data = arguments.Rest();
       const Variant value = data ? Variant(*data) : Variant(Variant::Missing{});
       const std::string reply = console.host_.Remote(profile, operation, value);
       console.out_ << '"' << reply << "\"\n";
     }},
    {"status", "a line a profile: game, options, ticks counted, next message",
     [](Console& console, Arguments) { console.host_.PrintStatus(); }},
    {"help", "this list", [](Console& console, Arguments) { console.PrintHelp(); }},
    {"quit", "end the host", [](Console& console, Arguments) { console.goesOn_ = false; }},
};

void Console::Start() {
  const std::size_t started = host_.LoadEveryProfile();
  out_ << "profiles started: " << started << "; \"help\" lists the commands\n" << std::flush;
}

bool Console::Execute(const std::string& line) {
  try {
    Run(std::string_view(line).substr(std::min(line.find_first_not_of(' '), line.size())));
  } catch (...) {
    out_ << CurrentRuntimeError().description << "\n";
  }
  out_ << std::flush;
  return goesOn_;
}

void Console::Run(std::string_view line) {
  const std::string_view name = line.substr(0, line.find(' '));
  if (name.empty()) return;
  for (const Command& command : kCommands) {
    if (command.Name() == name)
      return command.run(*this, {command.usage, line.substr(name.size())});
  }
  out_ << "\"" << name << "\" is no command; \"help\" lists them\n";
}

void Console::PrintHelp() const {
  TextTable table({"Command", "What it does"});
  for (const Command& command : kCommands) {
    table.Add({std::string(command.usage), std::string(command.help)});
  }
  table.Print(out_);
}

}  // namespace rotacasts::host
