// Remote administration from a browser: the page and what it asks for, beside the ticking profiles.
#pragma once

#include <ostream>

#include "web/api.h"

namespace rotacasts::host::web {

class WebSite {
 public:
  /// Serves the page at options.web from now on, in the event loop's turns, and tells `out` where.
  /// Error 5 or 57 when it cannot be served there. All that is referred to outlives it.
  WebSite(EventLoop& loop, ServerHost& host, const HostOptions& options, std::ostream& out);

 private:
  Sessions sessions_;
  Api api_;
  HttpServer server_;
  Clock::time_point nextBeat_;
};

}  // namespace rotacasts::host::web
