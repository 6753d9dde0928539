// The component's interface and record in C++; the type library declares the same.
#pragma once

#include <cstddef>

#include "com/windows_api.h"
#include "plugin/remote_operations.h"

namespace rotacasts::win32 {

/// The dispatch identifiers of the members; kRemoteOperations has the rest.
enum MemberId : DISPID {
  kGetData = 0x60030003,
  kGetPrivis = 0x60030004,
  kLoadInterface = 0x60030005,
  kUnLoadInterface = 0x60030006,
  kDisableProfile = 0x60030007,
  kHideInterface = 0x60030010,
};

/// A VARIANT with the alignment that it has in a record, the width of a pointer. Its default is 8,
/// but a host that declares the record in a Basic-like language aligns it to 4, and GetData fills
/// that host's own copy of the record.
typedef VARIANT RecordVariant
    __attribute__((aligned(sizeof(void*))));  // NOLINT: `using` takes none

/// The PLUGIN record of the type library, field for field. It owns its strings and arrays.
struct PluginRecord {
  BSTR Name;
  BSTR File;
  BSTR Version;
  BSTR Author;
  BSTR Description;
  RecordVariant Game;
  VARIANT_BOOL HasInterface;
  VARIANT_BOOL ProfileMenu;
  VARIANT_BOOL ServerMenu;
  VARIANT_BOOL MainMenu;
  RecordVariant ProfileMenuItems;
  RecordVariant ServerMenuItems;
  RecordVariant MainMenuItems;
  VARIANT_BOOL HasPrivis;
  BSTR HelpFile;
  BSTR MinKXVer;
  BSTR MinQMRVer;
  BSTR MinZDLVer;
  BSTR MinTVXVer;
};
// The layout of the 32-bit component, which is the one that is released.
static_assert(sizeof(void*) != 4 ||
              (alignof(PluginRecord) == 4 && sizeof(PluginRecord) == 116 &&
               offsetof(PluginRecord, Game) == 20 && offsetof(PluginRecord, HasPrivis) == 92));

/// Fills an empty record. After an error the record is partly filled and can be cleared.
void FillPluginRecord(const PLUGIN& plugin, PluginRecord& record);

/// The dual interface, in the order of the dispatch identifiers.
struct _clsPlugin : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE GetData(PluginRecord* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPrivis(VARIANT* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE LoadInterface(LONG Index, LONG PHWND, VARIANT PDAT,
                                                  BSTR fName) = 0;
  virtual HRESULT STDMETHODCALLTYPE UnLoadInterface(BSTR fName) = 0;
  virtual HRESULT STDMETHODCALLTYPE DisableProfile(LONG Index) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMessagesRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                   BSTR* result) {
    return CallRemote(&clsPlugin::GetMessagesRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE AddMessageRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                  BSTR* result) {
    return CallRemote(&clsPlugin::AddMessageRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE EnableRTRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                BSTR* result) {
    return CallRemote(&clsPlugin::EnableRTRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE ChangeIntervalRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                      BSTR* result) {
    return CallRemote(&clsPlugin::ChangeIntervalRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE MoveMessageDownRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                       BSTR* result) {
    return CallRemote(&clsPlugin::MoveMessageDownRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE MoveMessageUpRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                     BSTR* result) {
    return CallRemote(&clsPlugin::MoveMessageUpRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE DeleteMessageRem(LONG Index, VARIANT PDAT, VARIANT Data,
                                                     BSTR* result) {
    return CallRemote(&clsPlugin::DeleteMessageRem, Index, PDAT, Data, result);
  }
  virtual HRESULT STDMETHODCALLTYPE HideInterface(BSTR fName) = 0;

 protected:
  // After the interface's members, so that no caller from outside reaches it.
  virtual HRESULT CallRemote(decltype(RemoteOperation::call) operation, LONG Index,
                             const VARIANT& PDAT, const VARIANT& Data, BSTR* result) = 0;
};

}  // namespace rotacasts::win32
