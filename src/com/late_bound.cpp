#include "com/late_bound.h"

namespace rotacasts::win32 {
namespace {

constexpr HRESULT kControlFacility = static_cast<HRESULT>(0x800A0000);
constexpr HRESULT kFacilityMask = static_cast<HRESULT>(0xFFFF0000);

struct ResultRow {
  HRESULT result;
  ErrorNumber number;
};

/// The system's error (winerror.h) as a result code.
constexpr HRESULT OfSystem(DWORD error) {
  return static_cast<HRESULT>(0x80070000 | error);
}

// Result codes of the dispatch mechanism and of the system that have a run-time error of their own.
constexpr ResultRow kResults[] = {
    {DISP_E_UNKNOWNNAME, ErrorNumber::NoSuchMember},
    {DISP_E_MEMBERNOTFOUND, ErrorNumber::NoSuchMember},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {DISP_E_BADINDEX, ErrorNumber::SubscriptOutOfRange},
    {E_OUTOFMEMORY, ErrorNumber::OutOfMemory},
    {E_INVALIDARG, ErrorNumber::InvalidProcedureCall},
    {OfSystem(ERROR_FILE_NOT_FOUND), ErrorNumber::FileNotFound},
    {OfSystem(ERROR_PATH_NOT_FOUND), ErrorNumber::PathNotFound},
    {OfSystem(ERROR_ACCESS_DENIED), ErrorNumber::PermissionDenied},
    {OfSystem(ERROR_FILE_EXISTS), ErrorNumber::FileAlreadyExists},
    {OfSystem(ERROR_ALREADY_EXISTS), ErrorNumber::FileAlreadyExists},
};

[[noreturn]] void RaiseResult(HRESULT result) {
  for (const ResultRow& row : kResults) {
    if (row.result == result) throw RuntimeError(row.number);
  }
  throw RuntimeError(ErrorNumberOf(result), DescribeResult(result));
}

/// Raises what an object says of its error, and takes it over.
[[noreturn]] void RaiseException(EXCEPINFO& info) {
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const std::int32_t number = info.wCode != 0 ? info.wCode : ErrorNumberOf(info.scode);
  const std::string description = FromBstr(info.bstrDescription);
  ::SysFreeString(info.bstrSource);
  ::SysFreeString(info.bstrDescription);
  ::SysFreeString(info.bstrHelpFile);
  throw RuntimeError(number, description.empty() ? DescribeResult(info.scode) : description);
}

}  // namespace

std::int32_t ErrorNumberOf(HRESULT result) {
  for (const ResultRow& row : kResults) {
    if (row.result == result) return static_cast<std::int32_t>(row.number);
  }
  return (result & kFacilityMask) == kControlFacility ? result & 0xFFFF : result;
}

HRESULT ResultOf(std::int32_t errorNumber) {
  return errorNumber > 0 && errorNumber <= 0xFFFF ? kControlFacility | errorNumber : errorNumber;
}

LateBound LateBound::Create(const char* progId) {
  CLSID classId;
  HRESULT result = ::CLSIDFromProgID(ToWide(progId).c_str(), &classId);
  ComPtr<IDispatch> object;
  if (SUCCEEDED(result)) {
    result =
        ::CoCreateInstance(classId, nullptr, CLSCTX_SERVER, IID_IDispatch, object.ReceiveVoid());
  }
  if (FAILED(result)) throw RuntimeError(ErrorNumber::CannotCreateComponent, progId);
  return LateBound(std::move(object));
}

DISPID LateBound::Identify(const char* member) const {
  std::wstring name = ToWide(member);
  LPOLESTR names[] = {name.data()};
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(result)) throw RuntimeError(ErrorNumber::NoSuchMember, member);
  return id;
}

void LateBound::Raise(HRESULT result, EXCEPINFO& exception) {
  if (result == DISP_E_EXCEPTION) RaiseException(exception);
  RaiseResult(result);
}

}  // namespace rotacasts::win32
