#include "program/win32/late_bound_plugin.h"

#include <filesystem>

#include "base/conversions.h"
#include "com/win32_platform.h"
#include "host/complaint.h"
#include "machine/native_files.h"
#include "plugin/remote_operations.h"
#include "services/host_services.h"

namespace rotacasts::host {
namespace {

using win32::LateBound;
using win32::Member;
using win32::NumberArgument;
using win32::TextArgument;
using win32::ValueArgument;

constexpr const char* kProgId = "tvxRT.clsPlugin";
constexpr const wchar_t* kModule = L"tvxRT.dll";

LateBound CreatePlugin(const std::string& hostFolder) {
  try {
    return LateBound::Create(kProgId);
  } catch (const RuntimeError&) {
    throw Complaint(std::string(kProgId) + " cannot be created; register " + hostFolder +
                    "\\Plugins\\tvxRT.dll with regsvr32");
  }
}

/// Errors: 5 if the plugin belongs to another host folder, because it always works in the folder of
/// its own file.
void RefuseOtherFolder(const std::string& hostFolder) {
  const HMODULE module = ::GetModuleHandleW(kModule);
  if (module == nullptr) return;  // another file name or process: nothing to compare
  const std::string own = HostFolderOf(win32::LoadedModule(module).Folder());
  std::error_code ignored;
  if (std::filesystem::equivalent(NativePath(own), NativePath(hostFolder), ignored)) return;
  throw Complaint("the registered plugin works in " + own + "; register " + hostFolder +
                  "\\Plugins\\tvxRT.dll with regsvr32, or name that folder");
}

}  // namespace

LateBoundPlugin::LateBoundPlugin(const std::string& hostFolder, IniFiles& files)
    : object_(CreatePlugin(hostFolder)), files_(files) {
  RefuseOtherFolder(hostFolder);
}

LateBoundPlugin::~LateBoundPlugin() {
  object_ = LateBound({});
  ::CoFreeUnusedLibrariesEx(0, 0);  // so that the plugin releases its siblings while they exist
}

void LateBoundPlugin::ShortenMinute(std::chrono::nanoseconds minute) {
  const HMODULE module = ::GetModuleHandleW(kModule);
  const FARPROC entry =
      module != nullptr ? ::GetProcAddress(module, "RotacastsShortenMinute") : nullptr;
  if (entry == nullptr) throw Complaint("the registered plugin's minute cannot be shortened");
  const auto length = std::chrono::duration_cast<std::chrono::milliseconds>(minute).count();
  reinterpret_cast<HRESULT(WINAPI*)(LONG)>(reinterpret_cast<void*>(entry))(
      static_cast<LONG>(length));
}

void LateBoundPlugin::LoadInterface(std::int32_t index, forms::WindowHandle parent,
                                    const HostValue& data) {
  Member(object_, "LoadInterface")(NumberArgument(index),
                                   NumberArgument(static_cast<std::int32_t>(parent)),
                                   ValueArgument(data), TextArgument(""));
}

void LateBoundPlugin::HideInterface() {
  Member(object_, "HideInterface")(TextArgument(""));
}

void LateBoundPlugin::UnLoadInterface() {
  Member(object_, "UnLoadInterface")(TextArgument(""));
}

void LateBoundPlugin::DisableProfile(std::int32_t index) {
  Member(object_, "DisableProfile")(NumberArgument(index));
}

HostedPlugin::Reply LateBoundPlugin::Remote(const RemoteOperation& operation, std::int32_t index,
                                            const HostValue& data, const HostValue& value) {
  Reply reply;
  const IniFiles::Listener unstored(files_, [&reply](const RuntimeError& error) {
    if (reply.problems.empty()) reply.problems.push_back(error.description);
  });
  Member member(object_, operation.name);
  const win32::ComVariant answer =
      member(NumberArgument(index), ValueArgument(data), ValueArgument(value));
  reply.text = ToText(win32::ToHostValue(answer.Get()));
  return reply;
}

}  // namespace rotacasts::host
