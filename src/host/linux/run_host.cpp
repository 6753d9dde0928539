#include "host/run_host.h"

#include "host/console.h"
#include "host/linux/headless_plugin.h"
#include "host/machine/linux/console_input.h"

namespace rotacasts::host {

void RunHost(ProfileWatch& watch, const HostOptions& options, std::ostream& out) {
  EventLoop loop;
  HeadlessPlugin plugin(watch.Components(), options.minute, out);
  HeadlessSite site;
  ServerHost host(watch, plugin, site, options, out);
  Console console(host, out);
  headless::TimerLoop& timers = plugin.Timers();
  loop.AddDeadline([&timers] { return timers.NextDue(); }, [&timers] { timers.RunDue(); });
  ConsoleInput input(
      loop,
      [&](const std::string& line) {
        const bool goesOn = console.Execute(line);
        if (!goesOn) loop.Stop();
        return goesOn;
      },
      [] {});
  console.Start();
  loop.Run();
}

}  // namespace rotacasts::host
