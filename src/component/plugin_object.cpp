#include "component/plugin_object.h"

#include "base/conversions.h"
#include "com/entry.h"
#include "com/late_bound.h"
#include "component/member_table.h"
#include "component/server.h"
#include "component/type_library.h"

namespace rotacasts::win32 {
namespace {

/// Gives the caller of the dual interface the error's source and description; returns its code.
HRESULT AnswerError(const RuntimeError& error) {
  ComPtr<ICreateErrorInfo> creation;
  if (SUCCEEDED(::CreateErrorInfo(creation.Receive()))) {
    std::wstring source = kProgId;
    std::wstring description = ToWide(error.description);
    creation->SetGUID(InterfaceId());
    creation->SetSource(source.data());
    creation->SetDescription(description.data());
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(creation->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()))) {
      ::SetErrorInfo(0, info.Get());
    }
  }
  const HRESULT result = ResultOf(error.number);
  return FAILED(result) ? result : E_FAIL;
}

/// Runs the body of a member and keeps the object alive, because its last reference may be released
/// meanwhile. Never throws: an error becomes the caller's error information.
template <class Body>
HRESULT Contain(_clsPlugin* object, Body&& body) {
  const Entry entry;
  object->AddRef();
  const ComPtr<_clsPlugin> keepAlive = ComPtr<_clsPlugin>::Take(object);
  try {
    body();
    return S_OK;
  } catch (...) {
    try {
      return AnswerError(CurrentRuntimeError());
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
}

/// Moves the error information that AnswerError set to where the callers of Invoke read it.
void MoveErrorInto(EXCEPINFO* exception, HRESULT result) {
  ComPtr<IErrorInfo> info;
  const bool told = ::GetErrorInfo(0, info.Receive()) == S_OK;
  if (exception == nullptr) return;
  *exception = {};
  exception->scode = result;
  if (!told) return;
  info->GetSource(&exception->bstrSource);
  info->GetDescription(&exception->bstrDescription);
}

}  // namespace

PluginObject::PluginObject() : plugin_(Server::Get().State()) {
  Server::Get().Hold();
}
PluginObject::~PluginObject() {
  Server::Get().Drop();
}

HRESULT PluginObject::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
      IsEqualIID(id, InterfaceId())) {
    *object = static_cast<_clsPlugin*>(this);
  } else if (IsEqualIID(id, IID_ISupportErrorInfo)) {
    *object = static_cast<ISupportErrorInfo*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG PluginObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT PluginObject::InterfaceSupportsErrorInfo(REFIID id) {
  return IsEqualIID(id, InterfaceId()) || IsEqualIID(id, IID_IDispatch) ? S_OK : S_FALSE;
}

HRESULT PluginObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT PluginObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return LoadTypeInfo(InterfaceId(), info);
}

HRESULT PluginObject::GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (!IsEqualIID(id, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_POINTER;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const MemberRow* member = FindMember(names[0]);
  if (member == nullptr) return DISP_E_UNKNOWNNAME;
  ids[0] = member->id;
  HRESULT result = S_OK;
  for (UINT i = 1; i < count; ++i) {  // the names of parameters follow
    for (std::size_t p = 0; p < member->parameters.size(); ++p) {
      if (::_wcsicmp(member->parameters[p].name, names[i]) == 0) ids[i] = static_cast<DISPID>(p);
    }
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

HRESULT PluginObject::GetDataAsVariant(VARIANT* result) {
  ComPtr<IRecordInfo> info;
  HRESULT outcome = LoadRecordInfo(info.Receive());
  if (FAILED(outcome)) return outcome;
  void* record = info->RecordCreate();
  if (record == nullptr) return E_OUTOFMEMORY;
  outcome = GetData(static_cast<PluginRecord*>(record));
  if (FAILED(outcome) || result == nullptr) {
    info->RecordDestroy(record);
    return outcome;
  }
  ::VariantInit(result);
  result->vt = VT_RECORD;
  result->pvRecord = record;
  result->pRecInfo = info.Detach();
  return S_OK;
}

// Written by hand because DispInvoke cannot return a record everywhere (Wine answers E_NOTIMPL).
HRESULT PluginObject::Invoke(DISPID id, REFIID interfaceId, LCID, WORD flags,
                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                             UINT* badArgument) {
  if (!IsEqualIID(interfaceId, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_POINTER;
  const MemberRow* member = FindMember(id);
  if (member == nullptr || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  HRESULT collected = S_OK;
  const HRESULT outcome = Contain(this, [&] {
    std::vector<HostValue> arguments;
    collected = CollectArguments(*member, *parameters, arguments, badArgument);
    if (FAILED(collected)) return;
    if (member->id == kGetData) {
      collected = GetDataAsVariant(result);
      return;
    }
    const HostValue value = member->call(plugin_, arguments);
    if (result != nullptr) *result = ToComVariant(value).Release();
  });
  if (FAILED(collected)) return collected;
  if (SUCCEEDED(outcome)) return S_OK;
  MoveErrorInto(exception, outcome);
  return DISP_E_EXCEPTION;
}

// --- the dual interface ---

HRESULT PluginObject::GetData(PluginRecord* result) {
  if (result == nullptr) return E_POINTER;
  *result = {};
  return Contain(this, [&] { FillPluginRecord(plugin_.GetData(), *result); });
}

HRESULT PluginObject::GetPrivis(VARIANT* result) {
  if (result == nullptr) return E_POINTER;
  ::VariantInit(result);
  return Contain(this, [&] { *result = ToComVariant(plugin_.GetPrivis()).Release(); });
}

HRESULT PluginObject::LoadInterface(LONG Index, LONG PHWND, VARIANT PDAT, BSTR fName) {
  return Contain(this,
                 [&] { plugin_.LoadInterface(Index, PHWND, ToHostValue(PDAT), FromBstr(fName)); });
}

HRESULT PluginObject::UnLoadInterface(BSTR fName) {
  return Contain(this, [&] { plugin_.UnLoadInterface(FromBstr(fName)); });
}

HRESULT PluginObject::DisableProfile(LONG Index) {
  return Contain(this, [&] { plugin_.DisableProfile(Index); });
}

HRESULT PluginObject::HideInterface(BSTR fName) {
  return Contain(this, [&] { plugin_.HideInterface(FromBstr(fName)); });
}

HRESULT PluginObject::CallRemote(decltype(RemoteOperation::call) operation, LONG Index,
                                 const VARIANT& PDAT, const VARIANT& Data, BSTR* result) {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  return Contain(this, [&] {
    const std::string reply = (plugin_.*operation)(Index, ToHostValue(PDAT), ToHostValue(Data));
    *result = Bstr(reply).Release();
  });
}

}  // namespace rotacasts::win32
