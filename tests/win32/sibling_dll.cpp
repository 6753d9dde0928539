// Both sibling components as a DLL, for processes that are not part of this project: those of the
// stand-alone host, with C:\Host as the host folder.

#include "com/registry.h"
#include "com/win32_platform.h"
#include "siblings/host_platform.h"
#include "siblings/win32/sibling_objects.h"

using namespace rotacasts;

namespace {

struct Siblings {
  host::HostPlatform platform{"C:\\Host"};
  std::unique_ptr<MemoryComponent> memory = platform.CreateMemory();
  std::unique_ptr<UtilityComponent> utility = platform.CreateUtility();
};

constexpr std::pair<const wchar_t*, const char*> kClasses[] = {
    {host::kMemoryClassId, MemoryComponent::kProgId},
    {host::kUtilityClassId, UtilityComponent::kProgId}};

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
  static Siblings* const siblings = new Siblings;  // kept until the process ends
  CLSID memory;
  ::CLSIDFromString(host::kMemoryClassId, &memory);
  const auto sibling = IsEqualCLSID(classId, memory) ? host::MakeMemoryObject(*siblings->memory)
                                                     : host::MakeUtilityObject(*siblings->utility);
  return host::MakeFactory(sibling)->QueryInterface(id, object);
}

STDAPI DllRegisterServer() {
  const std::string file = win32::LoadedModule(::GetModuleHandleW(L"siblings.dll")).File();
  HRESULT written = S_OK;
  for (const auto& [classId, progId] : kClasses) {
    if (FAILED(written)) break;
    written = win32::WriteEntries(
        win32::ClassEntries(classId, win32::ToWide(progId), L"test", win32::ToWide(file)));
  }
  return written;
}

STDAPI DllUnregisterServer() {
  for (const auto& [classId, progId] : kClasses) {
    win32::RemoveKey(std::wstring(L"CLSID\\") + classId);
    win32::RemoveKey(win32::ToWide(progId));
  }
  return S_OK;
}
