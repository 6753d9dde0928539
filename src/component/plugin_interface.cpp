#include "component/plugin_interface.h"

#include "com/variant_conversion.h"

namespace rotacasts::win32 {

void FillPluginRecord(const PLUGIN& plugin, PluginRecord& record) {
  const auto flag = [](bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; };
  const auto text = [](const std::string& value) { return Bstr(value).Release(); };
  const auto variant = [](const HostValue& value) { return ToComVariant(value).Release(); };
  record.HasInterface = flag(plugin.HasInterface);
  record.ProfileMenu = flag(plugin.ProfileMenu);
  record.ServerMenu = flag(plugin.ServerMenu);
  record.MainMenu = flag(plugin.MainMenu);
  record.HasPrivis = flag(plugin.HasPrivis);
  record.Name = text(plugin.Name);
  record.File = text(plugin.File);
  record.Version = text(plugin.Version);
  record.Author = text(plugin.Author);
  record.Description = text(plugin.Description);
  record.HelpFile = text(plugin.HelpFile);
  record.MinKXVer = text(plugin.MinKXVer);
  record.MinQMRVer = text(plugin.MinQMRVer);
  record.MinZDLVer = text(plugin.MinZDLVer);
  record.MinTVXVer = text(plugin.MinTVXVer);
  record.Game = variant(plugin.Game);
  record.ProfileMenuItems = variant(plugin.ProfileMenuItems);
  record.ServerMenuItems = variant(plugin.ServerMenuItems);
  record.MainMenuItems = variant(plugin.MainMenuItems);
}

}  // namespace rotacasts::win32
