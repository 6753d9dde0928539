// Where a program's file is.
#pragma once

#include <string>

namespace rotacasts::win32 {

/// The file of a program, which is looked up where the system looks if the name has no folder, with
/// ".exe" added if it has no ending; empty if there is none.
std::wstring FindProgram(const std::string& name);

/// Whether it is a batch file. To run one, the system hands its arguments to a shell.
bool IsBatchFile(const std::wstring& file);

}  // namespace rotacasts::win32
