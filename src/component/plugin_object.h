// clsPlugin as a COM object.
#pragma once

#include <atomic>

#include "component/plugin_interface.h"
#include "plugin/cls_plugin.h"

namespace rotacasts::win32 {

/// The object behind the class's interfaces. Invoke looks members up in the table; the dual
/// interface calls the plugin directly. Never throws: an error that the plugin lets through becomes
/// a COM error with its number and description.
class PluginObject final : public _clsPlugin, public ISupportErrorInfo {
 public:
  PluginObject();
  virtual ~PluginObject();

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* badArgument) override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override;

  HRESULT STDMETHODCALLTYPE GetData(PluginRecord* result) override;
  HRESULT STDMETHODCALLTYPE GetPrivis(VARIANT* result) override;
  HRESULT STDMETHODCALLTYPE LoadInterface(LONG Index, LONG PHWND, VARIANT PDAT,
                                          BSTR fName) override;
  HRESULT STDMETHODCALLTYPE UnLoadInterface(BSTR fName) override;
  HRESULT STDMETHODCALLTYPE DisableProfile(LONG Index) override;
  HRESULT STDMETHODCALLTYPE HideInterface(BSTR fName) override;

 private:
  HRESULT CallRemote(decltype(RemoteOperation::call) operation, LONG Index, const VARIANT& PDAT,
                     const VARIANT& Data, BSTR* result) override;
  HRESULT GetDataAsVariant(VARIANT* result);

  std::atomic<ULONG> references_ = 1;
  clsPlugin plugin_;
};

}  // namespace rotacasts::win32
