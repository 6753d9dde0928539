// The two sibling components as COM objects for late binding, and their registration for the plugin
// in this process.
#pragma once

#include "com/com_support.h"
#include "platform/components.h"

namespace rotacasts::host {

/// Makes an object whose members are the component's operations; names ignore letter case. Changes
/// to by-reference arguments are written back. The component's errors become DISP_E_EXCEPTION with
/// their number and description. The component must outlive the object.
win32::ComPtr<IDispatch> MakeMemoryObject(MemoryComponent& component);
win32::ComPtr<IDispatch> MakeUtilityObject(UtilityComponent& component);

/// A class factory that always returns this object.
win32::ComPtr<IClassFactory> MakeFactory(win32::ComPtr<IDispatch> object);

/// Makes an object creatable by its programmatic identifier in this process while the registration
/// exists; every creation returns this object. Uses the class identifier that the machine has for
/// the name, or else registers `classId` for it, permanently.
class ObjectRegistration {
 public:
  /// Requires: COM is initialised on this thread. Errors: 429, with the reason, if it fails.
  ObjectRegistration(const char* progId, const wchar_t* classId, win32::ComPtr<IDispatch> object);
  ~ObjectRegistration();
  ObjectRegistration(const ObjectRegistration&) = delete;
  ObjectRegistration& operator=(const ObjectRegistration&) = delete;

 private:
  DWORD cookie_ = 0;
};

// The components' class identifiers, if the machine has none for them.
inline constexpr wchar_t kMemoryClassId[] = L"{2962F06C-562C-4A95-9526-3524F8F2D6F2}";
inline constexpr wchar_t kUtilityClassId[] = L"{6FBE4E21-1FA3-4D37-A4B1-9F98811E0513}";

/// Makes both components creatable by the plugin in this process. They must outlive the
/// registration and everybody who has created them.
class SiblingRegistration {
 public:
  SiblingRegistration(MemoryComponent& memory, UtilityComponent& utility);

 private:
  ObjectRegistration memory_;
  ObjectRegistration utility_;
};

}  // namespace rotacasts::host
