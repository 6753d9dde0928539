// The simulator as a process among others. One implementation per platform.
#pragma once

#include <cstdint>

namespace rotacasts::simulator {

/// The machine's number for this process.
std::int64_t ThisProcess();

/// Makes Ctrl-C and a request to terminate end the program in its own time: EndRequested() answers
/// true from then on, and a wait for chat ends.
void WatchForEnd();
bool EndRequested();

/// Ends this program when the one that started it ends.
void EndWithParent();

/// Lets other processes of the same user read this one, where the system asks for leave.
void AllowReaders();

}  // namespace rotacasts::simulator
