// Remote administration from a browser: serves the page and its requests while the profiles tick.
#pragma once

#include <ostream>

#include "web/api.h"

namespace rotacasts::host::web {

class WebSite {
 public:
  /// Serves the page at `address`, ADDRESS:PORT, in the event loop's turns, and prints its URL to
  /// `out`. Browsers ask by that address or by one of `names`. Errors: 5, 53 or 57 if it cannot be
  /// served there. `loop`, `host` and `out` must outlive it.
  WebSite(EventLoop& loop, ServerHost& host, const std::string& address,
          std::vector<std::string> names, std::ostream& out);

 private:
  Sessions sessions_;
  Api api_;
  HttpServer server_;
  Clock::time_point nextBeat_;
};

}  // namespace rotacasts::host::web
