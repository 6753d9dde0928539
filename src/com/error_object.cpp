#include "com/error_object.h"

#include <cwchar>

#include "com/variant_conversion.h"

namespace rotacasts::win32 {
namespace {

constexpr const char* kOwnSource = "tvxRT";

struct PropertyRow {
  const wchar_t* name;
  HostValue (*value)(const RuntimeError& error);
};

// A property's identifier is its index here, so the first one is the default property.
constexpr PropertyRow kProperties[] = {
    {L"Number", [](const RuntimeError& error) { return HostValue(error.number); }},
    {L"Source",
     [](const RuntimeError& error) {
       return HostValue(error.source.empty() ? kOwnSource : error.source);
     }},
    {L"Description", [](const RuntimeError& error) { return HostValue(error.description); }},
    {L"HelpFile", [](const RuntimeError& error) { return HostValue(error.helpFile); }},
    {L"HelpContext", [](const RuntimeError& error) { return HostValue(error.helpContext); }},
    // The plugin's errors carry no system error code.
    {L"LastDllError", [](const RuntimeError&) { return HostValue(std::int32_t{0}); }},
};
static_assert(DISPID_VALUE == 0);

class ErrorObject final : public CountedObject<IDispatch> {
 public:
  explicit ErrorObject(const RuntimeError& error) : error_(error) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
    return DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (std::size_t i = 0; i < std::size(kProperties); ++i) {
      if (::_wcsicmp(names[0], kProperties[i].name) == 0) ids[0] = static_cast<DISPID>(i);
    }
    return ids[0] != DISPID_UNKNOWN && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if ((flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
    if (static_cast<std::size_t>(member) >= std::size(kProperties)) return DISP_E_MEMBERNOTFOUND;
    if (result == nullptr) return S_OK;
    try {
      *result = ToComVariant(kProperties[member].value(error_)).Release();
      return S_OK;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

 private:
  const RuntimeError error_;
};

}  // namespace

ComPtr<IDispatch> MakeErrorObject(const RuntimeError& error) {
  return ComPtr<IDispatch>::Take(new ErrorObject(error));
}

}  // namespace rotacasts::win32
