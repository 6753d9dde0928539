// The page while the host runs.
#pragma once

#include <optional>
#include <ostream>

#include "host/host_options.h"
#include "web/web_site.h"

namespace rotacasts::host {

/// Serves the page, if the options name an address. While that is taken or not there yet, as when
/// the machine starts, it is tried again from time to time.
class ServedPage {
 public:
  /// All must outlive it. Errors: 5, 53 or 70 if it can never be served there.
  ServedPage(EventLoop& loop, ServerHost& host, const HostOptions& options, std::ostream& out);

 private:
  void Try();

  EventLoop& loop_;
  ServerHost& host_;
  const HostOptions& options_;
  std::ostream& out_;
  std::optional<EventLoop::Clock::time_point> next_;
  bool isTold_ = false;
  std::optional<web::WebSite> site_;
};

}  // namespace rotacasts::host
