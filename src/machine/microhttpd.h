// libmicrohttpd. On Linux it is loaded when the page is first served: it needs a TLS library, and a
// host without the page should not load either. On Windows it is a part of the program.
#pragma once

#include <microhttpd.h>

namespace rotacasts::host {

/// The library's functions that are used here, named without "MHD_".
struct Microhttpd {
  /// The library that the program was built with, loaded by the first call for the rest of the
  /// program's life. Errors: 53, with how to install it, if the machine does not have it.
  static const Microhttpd& Get();

  decltype(&MHD_add_response_header) add_response_header;
  decltype(&MHD_create_response_from_buffer) create_response_from_buffer;
  decltype(&MHD_create_response_from_callback) create_response_from_callback;
  decltype(&MHD_destroy_response) destroy_response;
  decltype(&MHD_get_connection_info) get_connection_info;
  decltype(&MHD_get_connection_values) get_connection_values;
  decltype(&MHD_get_daemon_info) get_daemon_info;
  decltype(&MHD_get_fdset2) get_fdset2;
  decltype(&MHD_get_timeout) get_timeout;
  decltype(&MHD_lookup_connection_value) lookup_connection_value;
  decltype(&MHD_queue_response) queue_response;
  decltype(&MHD_resume_connection) resume_connection;
  decltype(&MHD_run) run;
  decltype(&MHD_start_daemon) start_daemon;
  decltype(&MHD_stop_daemon) stop_daemon;
  decltype(&MHD_suspend_connection) suspend_connection;
};

}  // namespace rotacasts::host
