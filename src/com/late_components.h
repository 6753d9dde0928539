// The sibling components and the file-system object as COM objects, called by member name.
#pragma once

#include <memory>

#include "platform/components.h"

namespace rotacasts::win32 {

// Errors: 429 if the object cannot be created.
std::unique_ptr<MemoryComponent> CreateMemoryComponent();
std::unique_ptr<UtilityComponent> CreateUtilityComponent();
std::unique_ptr<FileSystemObject> CreateFileSystemObject();

}  // namespace rotacasts::win32
