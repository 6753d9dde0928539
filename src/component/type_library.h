// The type library that the DLL carries.
#pragma once

#include "com/windows_api.h"
#include "component/identities.h"

namespace rotacasts::win32 {

const GUID& ClassId();
const GUID& InterfaceId();
const GUID& LibraryId();

/// Each returns the failure code of whatever fails. The caller owns the result.
HRESULT LoadLibraryOfModule(ITypeLib** library);
HRESULT LoadTypeInfo(REFGUID id, ITypeInfo** info);
HRESULT LoadRecordInfo(IRecordInfo** info);

}  // namespace rotacasts::win32
