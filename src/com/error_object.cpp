#include "com/error_object.h"

#include <cwchar>

#include "com/variant_conversion.h"

namespace rotacasts::win32 {
namespace {

enum Property : DISPID { kNumber = DISPID_VALUE, kDescription = 1 };

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
    if (count != 1) return DISP_E_UNKNOWNNAME;
    if (::_wcsicmp(names[0], L"Number") == 0) {
      ids[0] = kNumber;
    } else if (::_wcsicmp(names[0], L"Description") == 0) {
      ids[0] = kDescription;
    } else {
      ids[0] = DISPID_UNKNOWN;
      return DISP_E_UNKNOWNNAME;
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if ((flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
    if (member != kNumber && member != kDescription) return DISP_E_MEMBERNOTFOUND;
    if (result == nullptr) return S_OK;
    try {
      const Variant value =
          member == kNumber ? Variant(error_.number) : Variant(error_.description);
      *result = ToVariant(value).Release();
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
