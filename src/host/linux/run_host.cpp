#include "host/run_host.h"

#include "host/console.h"
#include "host/linux/headless_plugin.h"
#include "host/machine/linux/console_input.h"

namespace rotacasts::host {

void RunHost(HostProfiles& profiles, const HostOptions& options, std::ostream& out) {
  EventLoop loop;
  Troubles troubles(out);
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
}

}  // namespace rotacasts::host
