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

namespace remote {
inline constexpr RemoteOperation kGetMessages{"GetMessagesRem", 0x60030009,
                                              &clsPlugin::GetMessagesRem};
inline constexpr RemoteOperation kAdd{"AddMessageRem", 0x6003000a, &clsPlugin::AddMessageRem};
inline constexpr RemoteOperation kEnable{"EnableRTRem", 0x6003000b, &clsPlugin::EnableRTRem};
inline constexpr RemoteOperation kChangeInterval{"ChangeIntervalRem", 0x6003000c,
                                                 &clsPlugin::ChangeIntervalRem};
inline constexpr RemoteOperation kMoveDown{"MoveMessageDownRem", 0x6003000d,
                                           &clsPlugin::MoveMessageDownRem};
inline constexpr RemoteOperation kMoveUp{"MoveMessageUpRem", 0x6003000e,
                                         &clsPlugin::MoveMessageUpRem};
inline constexpr RemoteOperation kDelete{"DeleteMessageRem", 0x6003000f,
                                         &clsPlugin::DeleteMessageRem};
}  // namespace remote

/// Every one; hosts and the component find them here.
inline constexpr RemoteOperation kRemoteOperations[] = {
    remote::kGetMessages, remote::kAdd,    remote::kEnable, remote::kChangeInterval,
    remote::kMoveDown,    remote::kMoveUp, remote::kDelete};

}  // namespace rotacasts
