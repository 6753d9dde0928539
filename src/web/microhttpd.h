// libmicrohttpd, loaded when the page is first served: it brings a TLS library along, and a host
// without the page need not hold those.
#pragma once

#include <microhttpd.h>

namespace rotacasts::host::web {

/// The functions of the library that are used here, by their names there without "MHD_".
struct Microhttpd {
  /// Loads the library of that file name, for as long as the program runs. Error 53, which says how
  /// to get it, when the machine does not have it.
  explicit Microhttpd(const char* fileName);
  /// The one that the program was built with, loaded by the first call. Errors: as above.
  static const Microhttpd& Get();

  decltype(&MHD_add_response_header) add_response_header;
  decltype(&MHD_create_response_from_buffer) create_response_from_buffer;
  decltype(&MHD_create_response_from_callback) create_response_from_callback;
  decltype(&MHD_destroy_response) destroy_response;
  decltype(&MHD_get_connection_info) get_connection_info;
  decltype(&MHD_get_daemon_info) get_daemon_info;
  decltype(&MHD_get_timeout) get_timeout;
  decltype(&MHD_lookup_connection_value) lookup_connection_value;
  decltype(&MHD_queue_response) queue_response;
  decltype(&MHD_resume_connection) resume_connection;
  decltype(&MHD_run) run;
  decltype(&MHD_start_daemon) start_daemon;
  decltype(&MHD_stop_daemon) stop_daemon;
  decltype(&MHD_suspend_connection) suspend_connection;
};

}  // namespace rotacasts::host::web
