#include "host/run_host.h"

#include "host/console.h"
#include "host/linux/headless_plugin.h"
#include "host/machine/linux/event_loop.h"

namespace rotacasts::host {

void RunHost(ProfileWatch& watch, const HostOptions& options, std::ostream& out) {
  HeadlessPlugin plugin(watch.Components(), options.minute, out);
  HeadlessSite site;
  ServerHost host(watch, plugin, site, options, out);
  Console console(host, out);
  console.Start();
  RunEventLoop(plugin.Timers(), [&](const std::string& line) { return console.Execute(line); });
}

}  // namespace rotacasts::host
