// The two sibling components as COM objects that are called by member name, and their registration
// for the plugin that this process hosts.
#pragma once

#include "com/com_support.h"
#include "platform/components.h"

namespace rotacasts::host {

/// An object whose members are the component's operations, their names in any letter case. What
/// the component leaves in a by-reference argument is written back; an error that it raises is
/// returned as DISP_E_EXCEPTION with the error's number and description. The component stays the
/// caller's and outlives the object.
win32::ComPtr<IDispatch> MakeMemoryObject(MemoryComponent& component);
win32::ComPtr<IDispatch> MakeUtilityObject(UtilityComponent& component);

/// The factory of a class of which there is this one object.
win32::ComPtr<IClassFactory> MakeFactory(win32::ComPtr<IDispatch> object);

/// Makes an object creatable by its programmatic identifier within this process, for as long as the
/// registration lives: every creation returns this one object. A class identifier that the machine
/// already knows for the name is used; else `classId` is recorded for it, and stays recorded.
class ObjectRegistration {
 public:
  /// COM is initialised on the calling thread. Error 429 with the reason when it is refused.
  ObjectRegistration(const char* progId, const wchar_t* classId, win32::ComPtr<IDispatch> object);
  ~ObjectRegistration();
  ObjectRegistration(const ObjectRegistration&) = delete;
  ObjectRegistration& operator=(const ObjectRegistration&) = delete;

 private:
  DWORD cookie_ = 0;
};

// The class identifiers that the components have where nobody else provides them.
inline constexpr wchar_t kMemoryClassId[] = L"{2962F06C-562C-4A95-9526-3524F8F2D6F2}";
inline constexpr wchar_t kUtilityClassId[] = L"{6FBE4E21-1FA3-4D37-A4B1-9F98811E0513}";

/// Both components, creatable by the plugin within this process. They outlive the registration and
/// whoever has created them.
class SiblingRegistration {
 public:
  SiblingRegistration(MemoryComponent& memory, UtilityComponent& utility);

 private:
  ObjectRegistration memory_;
  ObjectRegistration utility_;
};

}  // namespace rotacasts::host
