#include "host/console.h"

#include "host/text_table.h"
#include "platform/conversions.h"
#include "platform/text.h"

namespace rotacasts::host {
namespace {

/// What follows a command's name on its line.
class Arguments {
 public:
  Arguments(std::string_view usage, std::string_view rest) : usage_(usage), rest_(rest) {}

  /// The next word as a profile index. Error 5, with the command's usage, when there is none.
  std::int32_t Profile() {
    const std::string_view text = Word();
    if (!IsNumeric(text)) {
      throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::InvalidProcedureCall),
                         "usage: " + std::string(usage_));
    }
    return ToLong(text);
  }

 private:
  std::string_view Word() {
    rest_ = TrimSpaces(rest_);
    const std::string_view word = rest_.substr(0, rest_.find(' '));
    rest_.remove_prefix(word.size());
    return word;
  }

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
     [](Console& console, Arguments arguments) { console.host_.Show(arguments.Profile()); }},
    {"hide", "hide the window; the broadcasts go on",
     [](Console& console, Arguments) { console.host_.Hide(); }},
    {"unload", "unload the window and stop every profile",
     [](Console& console, Arguments) { console.host_.Unload(); }},
    {"disable PROFILE", "stop one profile",
     [](Console& console, Arguments arguments) { console.host_.Disable(arguments.Profile()); }},
    {"messages PROFILE", "list its messages and what each says now",
     [](Console& console, Arguments arguments) {
       console.host_.PrintMessages(arguments.Profile());
     }},
    {"status", "a line a profile: game, options, ticks counted, next message",
     [](Console& console, Arguments) { console.host_.PrintStatus(); }},
    {"help", "this list", [](Console& console, Arguments) { console.PrintHelp(); }},
    {"quit", "end the host", [](Console& console, Arguments) { console.goesOn_ = false; }},
};

bool Console::Execute(const std::string& line) {
  try {
    Run(TrimSpaces(line));
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
