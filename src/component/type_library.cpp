#include "component/type_library.h"

#include "com/com_support.h"
#include "com/windows_api.h"
#include "component/server.h"

namespace rotacasts::win32 {
namespace {

GUID Parse(const wchar_t* text) {
  GUID id{};
  ::CLSIDFromString(text, &id);
  return id;
}

}  // namespace

const GUID& ClassId() {
  static const GUID id = Parse(kClassIdText);
  return id;
}

const GUID& InterfaceId() {
  static const GUID id = Parse(kInterfaceIdText);
  return id;
}

const GUID& LibraryId() {
  static const GUID id = Parse(kLibraryIdText);
  return id;
}

HRESULT LoadLibraryOfModule(ITypeLib** library) {
  const std::wstring file = ToWide(LoadedModule(Server::Get().Module()).File());
  return ::LoadTypeLibEx(file.c_str(), REGKIND_NONE, library);
}

HRESULT LoadTypeInfo(REFGUID id, ITypeInfo** info) {
  ComPtr<ITypeLib> library;
  const HRESULT result = LoadLibraryOfModule(library.Receive());
  return FAILED(result) ? result : library->GetTypeInfoOfGuid(id, info);
}

HRESULT LoadRecordInfo(IRecordInfo** info) {
  ComPtr<ITypeInfo> record;
  const HRESULT result = LoadTypeInfo(Parse(kRecordIdText), record.Receive());
  return FAILED(result) ? result : ::GetRecordInfoFromTypeInfo(record.Get(), info);
}

}  // namespace rotacasts::win32
