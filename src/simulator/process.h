// The simulator's process. One implementation per platform.
#pragma once

#include <cstdint>

namespace rotacasts::simulator {

/// The system's identifier of this process.
std::int64_t ThisProcess();

/// Catches Ctrl-C and requests to terminate: EndRequested() is true afterwards, and a wait for chat
/// ends.
void WatchForEnd();
bool EndRequested();

/// Ends this program when the program that started it ends.
void EndWithParent();

/// Lets other processes of the user read this one, on systems that need permission for it.
void AllowReaders();

}  // namespace rotacasts::simulator
