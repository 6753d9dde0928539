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

// The result codes of COM and Windows that stand for a run-time error.
constexpr ResultRow kResults[] = {
    {DISP_E_UNKNOWNNAME, ErrorNumber::NoSuchMember},
    {DISP_E_MEMBERNOTFOUND, ErrorNumber::NoSuchMember},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {DISP_E_BADINDEX, ErrorNumber::SubscriptOutOfRange},
    {DISP_E_PARAMNOTFOUND, ErrorNumber::NoSuchNamedArgument},
    {DISP_E_PARAMNOTOPTIONAL, ErrorNumber::ArgumentNotOptional},
    {DISP_E_BADPARAMCOUNT, ErrorNumber::WrongNumberOfArguments},
    {E_OUTOFMEMORY, ErrorNumber::OutOfMemory},
    {E_INVALIDARG, ErrorNumber::InvalidProcedureCall},
    {OfSystem(ERROR_FILE_NOT_FOUND), ErrorNumber::FileNotFound},
    {OfSystem(ERROR_PATH_NOT_FOUND), ErrorNumber::PathNotFound},
    {OfSystem(ERROR_ACCESS_DENIED), ErrorNumber::PermissionDenied},
    {OfSystem(ERROR_FILE_EXISTS), ErrorNumber::FileAlreadyExists},
    {OfSystem(ERROR_ALREADY_EXISTS), ErrorNumber::FileAlreadyExists},
};

/// A description for an error that comes without one: the run-time's or a general one for run-time
/// errors, the system's for any other result code.
std::string WordsFor(HRESULT result) {
  constexpr const char* kOfAnApplication = "Application-defined or object-defined error";
  const std::int32_t number = ErrorNumberOf(result);
  const std::string_view own = DescriptionOf(number);
  if (!own.empty()) return std::string(own);
  return number > 0 ? kOfAnApplication : DescribeResult(result);
}

[[noreturn]] void RaiseResult(HRESULT result) {
  throw RuntimeError(ErrorNumberOf(result), WordsFor(result));
}

/// Raises the error that `info` describes and frees its strings.
[[noreturn]] void RaiseException(EXCEPINFO& info) {
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const HRESULT result = info.wCode != 0      ? ResultOf(info.wCode)
                         : FAILED(info.scode) ? info.scode
                                              : DISP_E_EXCEPTION;
  RuntimeError error(ErrorNumberOf(result), FromBstr(info.bstrDescription));
  error.source = FromBstr(info.bstrSource);
  error.helpFile = FromBstr(info.bstrHelpFile);
  error.helpContext = static_cast<std::int32_t>(info.dwHelpContext);
  ::SysFreeString(info.bstrSource);
  ::SysFreeString(info.bstrDescription);
  ::SysFreeString(info.bstrHelpFile);
  if (error.description.empty()) error.description = WordsFor(result);
  throw error;
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

void RaiseRefused(const char* progId, HRESULT result) {
  throw RuntimeError(ErrorNumber::CannotCreateComponent,
                     std::string(progId) + " (" + DescribeResult(result) + ")");
}

LateBound LateBound::Create(const char* progId) {
  CLSID classId;
  HRESULT result = ::CLSIDFromProgID(ToWide(progId).c_str(), &classId);
  ComPtr<IDispatch> object;
  if (SUCCEEDED(result)) {
    result =
        ::CoCreateInstance(classId, nullptr, CLSCTX_SERVER, IID_IDispatch, object.ReceiveVoid());
  }
  if (FAILED(result)) RaiseRefused(progId, result);
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

TextArgument::TextArgument(const std::string& text) : text_(text) {}

ValueArgument::ValueArgument(const HostValue& value) : value_(ToComVariant(value)) {}

TextReference::TextReference(std::string& text) : text_(text), value_(text) {}
TextReference::~TextReference() = default;

void TextReference::WriteBack() const {
  std::string text = FromBstr(value_.Get());
  if (text != before_) text_ = std::move(text);
}

}  // namespace rotacasts::win32
