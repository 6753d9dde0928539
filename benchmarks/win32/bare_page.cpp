// The opponent of the page's answer: libmicrohttpd alone, which serves a text of the same length.
// Usage: bare-page LENGTH; prints its port, and serves until it is ended.

#include <cstdlib>
#include <iostream>
#include <string>

#include "internet.h"  // before the library's own

#include "machine/microhttpd.h"

namespace {

MHD_Result Answer(void* body, MHD_Connection* connection, const char*, const char*, const char*,
                  const char*, std::size_t*, void** state) {
  if (*state == nullptr) {  // the request's first call
    *state = body;
    return MHD_YES;
  }
  auto& text = *static_cast<std::string*>(body);
  MHD_Response* const response =
      MHD_create_response_from_buffer(text.size(), text.data(), MHD_RESPMEM_PERSISTENT);
  const MHD_Result result = MHD_queue_response(connection, MHD_HTTP_OK, response);
  MHD_destroy_response(response);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  rotacasts::host::UseInternet();
  std::string body(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1000, 'x');
  MHD_Daemon* const daemon =
      MHD_start_daemon(0, 0, nullptr, nullptr, &Answer, &body, MHD_OPTION_END);
  if (daemon == nullptr) return 1;
  std::cout << MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT)->port << std::endl;
  for (;;) MHD_run_wait(daemon, -1);
}
