// The type library that the DLL carries.
#pragma once

#include "component/win32/identities.h"
#include "platform/win32/windows_api.h"

namespace rotacasts::win32 {

const GUID& ClassId();
const GUID& InterfaceId();
const GUID& LibraryId();

/// The caller owns what it receives; each answers the failure code of what went wrong.
HRESULT LoadLibraryOfModule(ITypeLib** library);
HRESULT LoadTypeInfo(REFGUID id, ITypeInfo** info);
HRESULT LoadRecordInfo(IRecordInfo** info);

}  // namespace rotacasts::win32
