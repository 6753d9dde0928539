#include "platform/win32/late_bound.h"

#include <vector>

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

/// What an object says of its error.
class Exception {
 public:
  ~Exception() {
    ::SysFreeString(info.bstrSource);
    ::SysFreeString(info.bstrDescription);
    ::SysFreeString(info.bstrHelpFile);
  }
  [[noreturn]] void Raise() {
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    const std::int32_t number = info.wCode != 0 ? info.wCode : ErrorNumberOf(info.scode);
    const std::string description = FromBstr(info.bstrDescription);
    throw RuntimeError(number, description.empty() ? DescribeResult(info.scode) : description);
  }
  EXCEPINFO info{};
};

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

ComVariant LateBound::Invoke(DISPID member, VARIANT* arguments, std::size_t count) const {
  constexpr std::size_t kMost = 8;
  VARIANT reversed[kMost];  // the dispatch mechanism takes the last argument first
  if (count > kMost) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  for (std::size_t i = 0; i < count; ++i) reversed[count - 1 - i] = arguments[i];
  DISPPARAMS parameters{reversed, nullptr, static_cast<UINT>(count), 0};
  ComVariant answer;
  Exception exception;
  const HRESULT result =
      object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                      &parameters, answer.Address(), &exception.info, nullptr);
  if (result == DISP_E_EXCEPTION) exception.Raise();
  if (FAILED(result)) RaiseResult(result);
  return answer;
}

}  // namespace rotacasts::win32
