#include "plugin/descriptor.h"

#include "game/game_builds.h"
#include "services/host_services.h"

namespace rotacasts {
namespace {

constexpr const char* kPluginName = "Rotacasts";

}  // namespace

PLUGIN DescribePlugin(const ModuleVersion& version) {
  return {
      .Name = kPluginName,
      .File = kModuleFile,
      .Version = FormatVersion(version),
      .Author = "Oren Halvik (Aka Marrow)",
      .Description =
          "This Plugin allows you to create and manage messages that get sent to the "
          "server at set intervals.",
      .Game = HostValue::Texts(GameTitles()),
      .HasInterface = true,
      .ProfileMenu = false,
      .ServerMenu = true,
      .MainMenu = false,
      .ProfileMenuItems = {},
      .ServerMenuItems = HostValue::Texts({kPluginName}),
      .MainMenuItems = {},
      .HasPrivis = true,
      .HelpFile = "tvxRT_help.chm",
      .MinKXVer = "1105",
      .MinQMRVer = "1105",
      .MinZDLVer = "1305",
      .MinTVXVer = "31103",
  };
}

HostValue DescribePrivileges() {
  return HostValue::Texts({kPluginName, "Add/Remove Rotacasts|1", "Change Rotacasts Settings|1"});
}

}  // namespace rotacasts
