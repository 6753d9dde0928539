// Both sibling components as a DLL, for a process that nobody here wrote: the stand-alone host's
// own, with C:\Host as the host folder.

#include "com/registry.h"
#include "host/components/host_platform.h"
#include "host/win32/sibling_objects.h"

namespace rotacasts {
namespace {

struct Siblings {
  host::HostPlatform platform{"C:\\Host"};
  std::unique_ptr<MemoryComponent> memory = platform.CreateMemory();
  std::unique_ptr<UtilityComponent> utility = platform.CreateUtility();
};

struct ClassRow {
  const wchar_t* classId;
  const char* progId;
  win32::ComPtr<IDispatch> (*make)(Siblings&);
};

constexpr ClassRow kClasses[] = {
    {host::kMemoryClassId, MemoryComponent::kProgId,
     [](Siblings& siblings) { return host::MakeMemoryObject(*siblings.memory); }},
    {host::kUtilityClassId, UtilityComponent::kProgId,
     [](Siblings& siblings) { return host::MakeUtilityObject(*siblings.utility); }},
};

}  // namespace
}  // namespace rotacasts

using namespace rotacasts;

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
  static Siblings* const siblings = new Siblings;  // until the process ends
  for (const ClassRow& row : kClasses) {
    CLSID own;
    if (FAILED(::CLSIDFromString(row.classId, &own)) || !IsEqualCLSID(classId, own)) continue;
    return host::MakeFactory(row.make(*siblings))->QueryInterface(id, object);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllRegisterServer() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&DllRegisterServer), &module);
  wchar_t file[MAX_PATH];
  ::GetModuleFileNameW(module, file, MAX_PATH);
  for (const ClassRow& row : kClasses) {
    const HRESULT written = win32::WriteEntries(
        win32::ClassEntries(row.classId, win32::ToWide(row.progId), L"test", file));
    if (FAILED(written)) return written;
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  for (const ClassRow& row : kClasses) {
    win32::RemoveKey(std::wstring(L"CLSID\\") + row.classId);
    win32::RemoveKey(win32::ToWide(row.progId));
  }
  return S_OK;
}
