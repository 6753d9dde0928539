// What the plugin tells the host about itself.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace rotacasts {

/// The PLUGIN record of the plugin's type library: field for field, in this order.
struct PLUGIN {
  std::string Name;
  std::string File;
  std::string Version;
  std::string Author;
  std::string Description;
  HostValue Game;
  bool HasInterface = false;
  bool ProfileMenu = false;
  bool ServerMenu = false;
  bool MainMenu = false;
  HostValue ProfileMenuItems;
  HostValue ServerMenuItems;
  HostValue MainMenuItems;
  bool HasPrivis = false;
  std::string HelpFile;
  std::string MinKXVer;
  std::string MinQMRVer;
  std::string MinZDLVer;
  std::string MinTVXVer;
};

/// The descriptor, built fresh.
PLUGIN DescribePlugin(const ModuleVersion& version);
/// The plugin's name, then its privileges, each a display name, "|" and the digit 1; built fresh.
HostValue DescribePrivileges();

}  // namespace rotacasts
