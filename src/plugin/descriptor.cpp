#include "plugin/descriptor.h"

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
      .Game = HostValue::Texts({
          "Delta Force,  V1.5.0.5",
          "Joint Operations: Typhoon Rising V1.6.9.2",
          "Joint Operations: Typhoon Rising V1.7.5.7",
          "Joint Operations: Typhoon Rising, NovaWorld Affiliate Server V1.6.9.2A",
          "Joint Operations: Typhoon Rising, NovaWorld Affiliate Server V1.7.5.7A",
          "DeltaForce: Xtreme 2 V1.7.5.7",
      }),
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
