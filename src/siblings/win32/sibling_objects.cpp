#include "siblings/win32/sibling_objects.h"

#include <cwchar>
#include <span>

#include "com/late_bound.h"
#include "siblings/win32/call_member.h"

namespace rotacasts::host {
namespace {

using win32::ComPtr;

template <class Component>
struct MemberRow {
  const wchar_t* name;
  UINT count;  // of its arguments
  HostValue (*run)(Component&, const VARIANT* reversed);
};

template <auto Function, class Component>
constexpr MemberRow<Component> RowOf(const wchar_t* name) {
  return {name, MemberCall<Function>::kCount, MemberCall<Function>::Run};
}

constexpr MemberRow<MemoryComponent> kMemoryMembers[] = {
    RowOf<&MemoryComponent::ReadLong, MemoryComponent>(L"ReadLong"),
    RowOf<&MemoryComponent::ReadStr, MemoryComponent>(L"ReadStr"),
    RowOf<&MemoryComponent::AddMsg, MemoryComponent>(L"AddMsg"),
    RowOf<&MemoryComponent::AddMsgB, MemoryComponent>(L"AddMsgB"),
    RowOf<&MemoryComponent::Enc64, MemoryComponent>(L"Enc64"),
    RowOf<&MemoryComponent::Dec64, MemoryComponent>(L"Dec64"),
};

constexpr MemberRow<UtilityComponent> kUtilityMembers[] = {
    RowOf<&UtilityComponent::GetIniKey, UtilityComponent>(L"GetIniKey"),
    RowOf<&UtilityComponent::WriteIniKey, UtilityComponent>(L"WriteIniKey"),
    RowOf<&UtilityComponent::GetIniSection, UtilityComponent>(L"GetIniSection"),
    RowOf<&UtilityComponent::ParseIniKey, UtilityComponent>(L"ParseIniKey"),
    RowOf<&UtilityComponent::ReadFile, UtilityComponent>(L"ReadFile"),
    RowOf<&UtilityComponent::AppendFile, UtilityComponent>(L"AppendFile"),
    RowOf<&UtilityComponent::LogError, UtilityComponent>(L"LogError"),
    RowOf<&UtilityComponent::SendErrorReport, UtilityComponent>(L"SendErrorReport"),
};

/// Describes the exception being handled.
HRESULT AnswerException(EXCEPINFO* exception, const char* source) {
  try {
    const RuntimeError error = CurrentRuntimeError();
    if (exception == nullptr) return DISP_E_EXCEPTION;
    *exception = {};
    exception->scode = win32::ResultOf(error.number);
    exception->bstrSource = win32::Bstr(source).Release();
    exception->bstrDescription = win32::Bstr(error.description).Release();
    return DISP_E_EXCEPTION;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

/// A component as an IDispatch. A member's identifier is its index in the table + 1.
template <class Component>
class ComponentObject final : public win32::CountedObject<IDispatch> {
 public:
  ComponentObject(Component& component, std::span<const MemberRow<Component>> members)
      : component_(component), members_(members) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
    return DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_POINTER;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (::_wcsicmp(members_[i].name, names[0]) == 0) ids[0] = static_cast<DISPID>(i + 1);
    }
    return ids[0] != DISPID_UNKNOWN && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* call,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    if (member < 1 || static_cast<std::size_t>(member) > members_.size()) {
      return DISP_E_MEMBERNOTFOUND;
    }
    if ((flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
    if (call == nullptr) return E_POINTER;
    const MemberRow<Component>& row = members_[static_cast<std::size_t>(member) - 1];
    if (call->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    if (call->cArgs != row.count) return DISP_E_BADPARAMCOUNT;
    try {
      const HostValue answer = row.run(component_, call->rgvarg);
      if (result != nullptr) *result = win32::ToComVariant(answer).Release();
      return S_OK;
    } catch (...) {
      return AnswerException(exception, Component::kProgId);
    }
  }

 private:
  Component& component_;
  const std::span<const MemberRow<Component>> members_;
};

/// A class factory that always returns the same object.
class SingleObjectFactory final : public win32::CountedObject<IClassFactory> {
 public:
  explicit SingleObjectFactory(ComPtr<IDispatch> object) : object_(std::move(object)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return object_->QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  const ComPtr<IDispatch> object_;
};

/// Records the class for the programmatic identifier, for everyone or, where that takes more
/// rights, for this user.
void RecordClass(const char* progId, const wchar_t* classId) {
  const std::wstring name = win32::ToWide(progId) + L"\\CLSID";
  const std::pair<HKEY, std::wstring> places[] = {
      {HKEY_CLASSES_ROOT, name}, {HKEY_CURRENT_USER, L"Software\\Classes\\" + name}};
  LSTATUS status = ERROR_SUCCESS;
  for (const auto& [root, key] : places) {
    status = ::RegSetKeyValueW(root, key.c_str(), nullptr, REG_SZ, classId,
                               static_cast<DWORD>((std::wcslen(classId) + 1) * sizeof(wchar_t)));
    if (status == ERROR_SUCCESS) return;
  }
  win32::RaiseRefused(progId, HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

}  // namespace

ComPtr<IDispatch> MakeMemoryObject(MemoryComponent& component) {
  return ComPtr<IDispatch>::Take(
      new ComponentObject<MemoryComponent>(component, std::span(kMemoryMembers)));
}

ComPtr<IDispatch> MakeUtilityObject(UtilityComponent& component) {
  return ComPtr<IDispatch>::Take(
      new ComponentObject<UtilityComponent>(component, std::span(kUtilityMembers)));
}

ComPtr<IClassFactory> MakeFactory(ComPtr<IDispatch> object) {
  return ComPtr<IClassFactory>::Take(new SingleObjectFactory(std::move(object)));
}

ObjectRegistration::ObjectRegistration(const char* progId, const wchar_t* classId,
                                       ComPtr<IDispatch> object) {
  CLSID id;
  HRESULT result = ::CLSIDFromProgID(win32::ToWide(progId).c_str(), &id);
  if (FAILED(result)) {
    RecordClass(progId, classId);
    result = ::CLSIDFromString(classId, &id);
  }
  if (SUCCEEDED(result)) {
    const auto factory = MakeFactory(std::move(object));
    result = ::CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                     &cookie_);
  }
  if (FAILED(result)) win32::RaiseRefused(progId, result);
}

ObjectRegistration::~ObjectRegistration() {
  ::CoRevokeClassObject(cookie_);
}

SiblingRegistration::SiblingRegistration(MemoryComponent& memory, UtilityComponent& utility)
    : memory_(MemoryComponent::kProgId, kMemoryClassId, MakeMemoryObject(memory)),
      utility_(UtilityComponent::kProgId, kUtilityClassId, MakeUtilityObject(utility)) {}

}  // namespace rotacasts::host
