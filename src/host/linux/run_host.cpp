#include "host/run_host.h"

#include "host/console.h"
#include "host/linux/headless_plugin.h"
#include "host/machine/linux/console_input.h"
#include "host/machine/linux/program_starter.h"

namespace rotacasts::host {

namespace {

/// What a program could not say is an error of its profile; a datagram's error is the plugin's.
void TellOfChat(const HostProfiles& profiles, Troubles& troubles, const SentText& sent) {
  const auto profile = profiles.All().find(sent.profile);
  if (profile == profiles.All().end() || profile->second.say.empty()) return;
  const std::int32_t key = -sent.profile;  // beside the profile's ticks
  const std::string label = profile->second.Label();
  if (sent.outcome == SentText::Outcome::Failed) {
    const std::string words = Named(label, sent.reason);
    const bool isNew = !troubles.IsOld(key, words);
    troubles.Met(key, words);
    if (isNew) profiles.Record("Say", words);
  }
  for (const std::string& ended : troubles.TickEnded(key, label)) {
    profiles.Record("Say", Named(label, ended));
  }
}

}  // namespace

void RunHost(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  EventLoop loop;
  Troubles troubles(out);
  ProgramStarter programs(loop);
  Chat& chat = profiles.Components().GetChat();
  chat.SetRunner(&programs);
  chat.onEnd = [&](const SentText& sent) { TellOfChat(profiles, troubles, sent); };
  HeadlessPlugin plugin(profiles, troubles, options.minute);
  HeadlessSite site;
  ServerHost host(profiles, plugin, site, options);
  Console console(host, out);
  loop.AddDeadline([&plugin] { return plugin.NextDue(); }, [&plugin] { plugin.RunDue(); });
  loop.onReload = [&console] { console.Reload(); };
  ConsoleInput input(
      loop,
      [&](const std::string& line) {
        const bool goesOn = console.Execute(line);
        if (!goesOn) loop.Stop();
        return goesOn;
      },
      [&out] {
        out << "the console's input has ended; the host goes on without it (SIGTERM ends it, "
               "SIGHUP "
               "reloads)\n"
            << std::flush;
      });
  console.Start();
  loop.Run();
  chat.onEnd = nullptr;
  chat.SetRunner(nullptr);
}

}  // namespace rotacasts::host
