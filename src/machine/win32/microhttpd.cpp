#include "internet.h"  // before the library's own

#include "machine/microhttpd.h"

namespace rotacasts::host {

const Microhttpd& Microhttpd::Get() {
  static const Microhttpd functions = [] {
    UseInternet();
    return Microhttpd{MHD_add_response_header,
                      MHD_create_response_from_buffer,
                      MHD_create_response_from_callback,
                      MHD_destroy_response,
                      MHD_get_connection_info,
                      MHD_get_connection_values,
                      MHD_get_daemon_info,
                      MHD_get_fdset2,
                      MHD_get_timeout,
                      MHD_lookup_connection_value,
                      MHD_queue_response,
                      MHD_resume_connection,
                      MHD_run,
                      MHD_start_daemon,
                      MHD_stop_daemon,
                      MHD_suspend_connection};
  }();
  return functions;
}

}  // namespace rotacasts::host
