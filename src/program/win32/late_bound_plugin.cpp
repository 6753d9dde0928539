#include "program/win32/late_bound_plugin.h"

#include <filesystem>

#include "base/conversions.h"
#include "com/win32_platform.h"
#include "files/native_files.h"
#include "host/complaint.h"
#include "plugin/remote_operations.h"
#include "services/host_services.h"
#include "siblings/plain_words.h"

namespace rotacasts::host {
namespace {

using win32::LateBound;
using win32::Member;
using win32::NumberArgument;
using win32::TextArgument;
using win32::ValueArgument;

constexpr const char* kProgId = "tvxRT.clsPlugin";
constexpr const wchar_t* kModule = L"tvxRT.dll";

/// The file that is registered as the plugin, for programs as wide as this one; empty for none.
std::wstring RegisteredFile() {
  CLSID id;
  wchar_t text[40];
  if (FAILED(::CLSIDFromProgID(win32::ToWide(kProgId).c_str(), &id))) return {};
  ::StringFromGUID2(id, text, 40);
  const std::wstring key = std::wstring(L"CLSID\\") + text + L"\\InprocServer32";
  wchar_t file[MAX_PATH];
  DWORD size = sizeof file;
  const LSTATUS status =
      ::RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, file, &size);
  return status == ERROR_SUCCESS ? file : L"";
}

/// Why the plugin cannot be created. COM's own answer, `said`, may blame the registration for a
/// file that cannot be loaded.
std::string Reason(const std::string& said) {
  const std::wstring path = RegisteredFile();
  const std::string file = win32::FromWide(path);
  if (file.empty()) return "it is not registered";
  if (::GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) return file + " is missing";
  const HMODULE module = ::LoadLibraryW(path.c_str());
  const DWORD error = ::GetLastError();
  if (module == nullptr) {
    return file + " cannot be loaded (" + win32::DescribeResult(HRESULT_FROM_WIN32(error)) + ")";
  }
  ::FreeLibrary(module);
  return said;
}

std::string WayOut(const std::string& hostFolder) {
  return "; register " + hostFolder + "\\Plugins\\tvxRT.dll with regsvr32";
}

LateBound CreatePlugin(const std::string& hostFolder) {
  try {
    return LateBound::Create(kProgId);
  } catch (const RuntimeError& error) {
    throw Complaint(std::string(kProgId) + " cannot be created: " + Reason(error.description) +
                    WayOut(hostFolder));
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
  throw Complaint("the registered plugin works in " + own + WayOut(hostFolder) +
                  ", or name that folder");
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
    if (reply.problems.empty()) reply.problems.push_back(PlainWords(error));
  });
  Member member(object_, operation.name);
  const win32::ComVariant answer =
      member(NumberArgument(index), ValueArgument(data), ValueArgument(value));
  reply.text = ToText(win32::ToHostValue(answer.Get()));
  return reply;
}

}  // namespace rotacasts::host
