// The DLL's entry points: what the system calls to load, create, register and unload the component.

#include <new>

#include "com/com_support.h"
#include "com/entry.h"
#include "com/registry.h"
#include "com/windows_api.h"
#include "component/plugin_object.h"
#include "component/server.h"
#include "component/type_library.h"

namespace rotacasts::win32 {
namespace {

/// Creates clsPlugin objects. The only instance is static, so references to it count as locks.
class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory);
    *object = known ? static_cast<IClassFactory*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    Server::Get().Hold();
    return 2;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    Server::Get().Drop();
    return 1;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    const Entry entry;
    try {
      const auto created = ComPtr<_clsPlugin>::Take(new PluginObject());
      return created->QueryInterface(id, object);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock != FALSE ? Server::Get().Hold() : Server::Get().Drop();
    return S_OK;
  }
};

ClassFactory theFactory;

HRESULT RegisterTypes(const std::wstring& file) {
  ComPtr<ITypeLib> library;
  const HRESULT result = LoadLibraryOfModule(library.Receive());
  if (FAILED(result)) return result;
  std::wstring path = file;
  return ::RegisterTypeLib(library.Get(), path.data(), nullptr);
}

}  // namespace
}  // namespace rotacasts::win32

using namespace rotacasts::win32;

namespace __gnu_cxx {
void __freeres();  // frees the library's reserve for throwing when memory is exhausted
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    ::DisableThreadLibraryCalls(module);
    Server::Attach(module);
  } else if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    Server::Detach();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(classId, ClassId())) return CLASS_E_CLASSNOTAVAILABLE;
  return theFactory.QueryInterface(id, object);
}

STDAPI DllCanUnloadNow() {
  return Server::Get().CanUnload() ? S_OK : S_FALSE;
}

/// Shortens the minute for timers set from now on, so that a run can be watched. Not part of the
/// component: only the stand-alone host calls it, by name. An environment variable would reach
/// every host that has it.
STDAPI RotacastsShortenMinute(LONG milliseconds) {
  Server::Get().ShortenMinute(milliseconds);
  return S_OK;
}

STDAPI DllRegisterServer() {
  try {
    const std::wstring file = ToWide(LoadedModule(Server::Get().Module()).File());
    std::vector<RegistryEntry> entries = ClassEntries(kClassIdText, kProgId, kDescription, file);
    entries.push_back(
        {std::wstring(L"CLSID\\") + kClassIdText + L"\\TypeLib", L"", kLibraryIdText});
    const HRESULT written = WriteEntries(entries);
    return FAILED(written)               ? SELFREG_E_CLASS
           : FAILED(RegisterTypes(file)) ? SELFREG_E_TYPELIB
                                         : S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

STDAPI DllUnregisterServer() {
  try {
    ::UnRegisterTypeLib(LibraryId(), 1, 0, LOCALE_NEUTRAL,
                        sizeof(void*) == 4 ? SYS_WIN32 : SYS_WIN64);
    const HRESULT classGone = RemoveKey(std::wstring(L"CLSID\\") + kClassIdText);
    const HRESULT nameGone = RemoveKey(kProgId);
    return FAILED(classGone) || FAILED(nameGone) ? SELFREG_E_CLASS : S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}
