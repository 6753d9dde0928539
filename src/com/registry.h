// Registering component classes for all users of the machine.
#pragma once

#include <string>
#include <vector>

#include "com/windows_api.h"

namespace rotacasts::win32 {

/// A value to write below the root of classes. An empty name means the key's default value.
struct RegistryEntry {
  std::wstring key;
  std::wstring name;
  std::wstring value;
};

/// The entries that register an in-process class, the class's own key first.
std::vector<RegistryEntry> ClassEntries(const std::wstring& classId, const std::wstring& progId,
                                        const std::wstring& description, const std::wstring& file);

/// Writes the entries. Stops at the first that cannot be written and returns its failure code.
HRESULT WriteEntries(const std::vector<RegistryEntry>& entries);
/// Removes a key below the root of classes with everything in it. A missing key is a success.
HRESULT RemoveKey(const std::wstring& key);

}  // namespace rotacasts::win32
