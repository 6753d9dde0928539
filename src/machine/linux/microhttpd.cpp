#include "machine/linux/load_microhttpd.h"

#include <string>

#include "base/runtime_error.h"
#include "machine/linux/shared_library.h"

namespace rotacasts::host {
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

Microhttpd LoadMicrohttpd(const char* fileName) {
  const SharedLibrary library(fileName);
  if (!library.IsLoaded()) Refuse();
  Microhttpd found{};
  Find(library, "MHD_add_response_header", found.add_response_header);
  Find(library, "MHD_create_response_from_buffer", found.create_response_from_buffer);
  Find(library, "MHD_create_response_from_callback", found.create_response_from_callback);
  Find(library, "MHD_destroy_response", found.destroy_response);
  Find(library, "MHD_get_connection_info", found.get_connection_info);
  Find(library, "MHD_get_connection_values", found.get_connection_values);
  Find(library, "MHD_get_daemon_info", found.get_daemon_info);
  Find(library, "MHD_get_fdset2", found.get_fdset2);
  Find(library, "MHD_get_timeout", found.get_timeout);
  Find(library, "MHD_lookup_connection_value", found.lookup_connection_value);
  Find(library, "MHD_queue_response", found.queue_response);
  Find(library, "MHD_resume_connection", found.resume_connection);
  Find(library, "MHD_run", found.run);
  Find(library, "MHD_start_daemon", found.start_daemon);
  Find(library, "MHD_stop_daemon", found.stop_daemon);
  Find(library, "MHD_suspend_connection", found.suspend_connection);
  return found;
}

const Microhttpd& Microhttpd::Get() {
  static const Microhttpd functions = LoadMicrohttpd(MICROHTTPD_FILE_NAME);
  return functions;
}

}  // namespace rotacasts::host
