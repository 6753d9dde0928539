// Registering component classes for all users of the machine.
#pragma once

#include <string>
#include <vector>

#include "com/windows_api.h"

namespace rotacasts::win32 {

/// A key below the root of classes, and what one of its values (the default one for an empty name)
/// is to hold.
struct RegistryEntry {
  std::wstring key;
  std::wstring name;
  std::wstring value;
};

/// What registers an in-process class: its identifier, its programmatic identifier, its file. The
/// first key of a class's own comes first.
std::vector<RegistryEntry> ClassEntries(const std::wstring& classId, const std::wstring& progId,
                                        const std::wstring& description, const std::wstring& file);

/// Writes the entries; the failure code of the first that cannot be written.
HRESULT WriteEntries(const std::vector<RegistryEntry>& entries);
/// Removes a key below the root of classes and all that lies in it; a missing one is no failure.
HRESULT RemoveKey(const std::wstring& key);

}  // namespace rotacasts::win32
