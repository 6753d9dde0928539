#include "com/registry.h"

#include <shlwapi.h>  // needs the types of windows.h

namespace rotacasts::win32 {

std::vector<RegistryEntry> ClassEntries(const std::wstring& classId, const std::wstring& progId,
                                        const std::wstring& description, const std::wstring& file) {
  const std::wstring own = L"CLSID\\" + classId;
  return {{own, L"", description},
          {own + L"\\InprocServer32", L"", file},
          {own + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
          {own + L"\\ProgID", L"", progId},
          {progId, L"", description},
          {progId + L"\\CLSID", L"", classId}};
}

HRESULT WriteEntries(const std::vector<RegistryEntry>& entries) {
  for (const RegistryEntry& entry : entries) {
    HKEY key = nullptr;
    LSTATUS status = ::RegCreateKeyExW(HKEY_CLASSES_ROOT, entry.key.c_str(), 0, nullptr, 0,
                                       KEY_SET_VALUE, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) {
      status = ::RegSetValueExW(key, entry.name.empty() ? nullptr : entry.name.c_str(), 0, REG_SZ,
                                reinterpret_cast<const BYTE*>(entry.value.c_str()),
                                static_cast<DWORD>((entry.value.size() + 1) * sizeof(wchar_t)));
      ::RegCloseKey(key);
    }
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  }
  return S_OK;
}

HRESULT RemoveKey(const std::wstring& key) {
  const DWORD status = ::SHDeleteKeyW(HKEY_CLASSES_ROOT, key.c_str());
  if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) return S_OK;
  return HRESULT_FROM_WIN32(status);
}

}  // namespace rotacasts::win32
