// The remote operations by the names that hosts call them by.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/cls_plugin.h"

namespace rotacasts {

/// An operation that a remote administrator reaches: what hosts call it by, and the call.
struct RemoteOperation {
  const char* name;
  std::int32_t id;  // of the dispatch interface
  std::string (clsPlugin::*call)(std::int32_t Index, const HostValue& PDAT, const HostValue& Data);
};

/// Every one; hosts and the component find them here.
inline constexpr RemoteOperation kRemoteOperations[] = {
    {"GetMessagesRem", 0x60030009, &clsPlugin::GetMessagesRem},
    {"AddMessageRem", 0x6003000a, &clsPlugin::AddMessageRem},
    {"EnableRTRem", 0x6003000b, &clsPlugin::EnableRTRem},
    {"ChangeIntervalRem", 0x6003000c, &clsPlugin::ChangeIntervalRem},
    {"MoveMessageDownRem", 0x6003000d, &clsPlugin::MoveMessageDownRem},
    {"MoveMessageUpRem", 0x6003000e, &clsPlugin::MoveMessageUpRem},
    {"DeleteMessageRem", 0x6003000f, &clsPlugin::DeleteMessageRem},
};

}  // namespace rotacasts
