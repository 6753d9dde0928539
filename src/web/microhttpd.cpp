#include "web/microhttpd.h"

#include <string>

#include "base/runtime_error.h"
#include "machine/linux/shared_library.h"

namespace rotacasts::host::web {
namespace {

[[noreturn]] void Refuse() {
  throw RuntimeError(static_cast<std::int32_t>(ErrorNumber::FileNotFound),
                     "the page cannot be served (" + SharedLibrary::Problem() +
                         "); install libmicrohttpd, or leave --web out");
}

/// Looks up a function by name and stores it with its type.
template <class Function>
void Find(const SharedLibrary& library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(library.Function(name));
  if (function == nullptr) Refuse();
}

}  // namespace

Microhttpd::Microhttpd(const char* fileName) {
  const SharedLibrary library(fileName);
  if (!library.IsLoaded()) Refuse();
  Find(library, "MHD_add_response_header", add_response_header);
  Find(library, "MHD_create_response_from_buffer", create_response_from_buffer);
  Find(library, "MHD_create_response_from_callback", create_response_from_callback);
  Find(library, "MHD_destroy_response", destroy_response);
  Find(library, "MHD_get_connection_info", get_connection_info);
  Find(library, "MHD_get_connection_values", get_connection_values);
  Find(library, "MHD_get_daemon_info", get_daemon_info);
  Find(library, "MHD_get_timeout", get_timeout);
  Find(library, "MHD_lookup_connection_value", lookup_connection_value);
  Find(library, "MHD_queue_response", queue_response);
  Find(library, "MHD_resume_connection", resume_connection);
  Find(library, "MHD_run", run);
  Find(library, "MHD_start_daemon", start_daemon);
  Find(library, "MHD_stop_daemon", stop_daemon);
  Find(library, "MHD_suspend_connection", suspend_connection);
}

const Microhttpd& Microhttpd::Get() {
  static const Microhttpd functions(MICROHTTPD_FILE_NAME);
  return functions;
}

}  // namespace rotacasts::host::web
