#include "component/plugin_interface.h"

#include "com/variant_conversion.h"

namespace rotacasts::win32 {

namespace {

struct TextRow {
  BSTR PluginRecord::*field;
  std::string PLUGIN::*value;
};
struct VariantRow {
  VARIANT PluginRecord::*field;
  HostValue PLUGIN::*value;
};
struct FlagRow {
  VARIANT_BOOL PluginRecord::*field;
  bool PLUGIN::*value;
};
constexpr TextRow kTexts[] = {
    {&PluginRecord::Name, &PLUGIN::Name},
    {&PluginRecord::File, &PLUGIN::File},
    {&PluginRecord::Version, &PLUGIN::Version},
    {&PluginRecord::Author, &PLUGIN::Author},
    {&PluginRecord::Description, &PLUGIN::Description},
    {&PluginRecord::HelpFile, &PLUGIN::HelpFile},
    {&PluginRecord::MinKXVer, &PLUGIN::MinKXVer},
    {&PluginRecord::MinQMRVer, &PLUGIN::MinQMRVer},
    {&PluginRecord::MinZDLVer, &PLUGIN::MinZDLVer},
    {&PluginRecord::MinTVXVer, &PLUGIN::MinTVXVer},
};
constexpr VariantRow kVariants[] = {
    {&PluginRecord::Game, &PLUGIN::Game},
    {&PluginRecord::ProfileMenuItems, &PLUGIN::ProfileMenuItems},
    {&PluginRecord::ServerMenuItems, &PLUGIN::ServerMenuItems},
    {&PluginRecord::MainMenuItems, &PLUGIN::MainMenuItems},
};
constexpr FlagRow kFlags[] = {
    {&PluginRecord::HasInterface, &PLUGIN::HasInterface},
    {&PluginRecord::ProfileMenu, &PLUGIN::ProfileMenu},
    {&PluginRecord::ServerMenu, &PLUGIN::ServerMenu},
    {&PluginRecord::MainMenu, &PLUGIN::MainMenu},
    {&PluginRecord::HasPrivis, &PLUGIN::HasPrivis},
};

}  // namespace

void FillPluginRecord(const PLUGIN& plugin, PluginRecord& record) {
  for (const FlagRow& row : kFlags) {
    record.*row.field = plugin.*row.value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  for (const TextRow& row : kTexts) record.*row.field = Bstr(plugin.*row.value).Release();
  for (const VariantRow& row : kVariants) {
    record.*row.field = ToComVariant(plugin.*row.value).Release();
  }
}

}  // namespace rotacasts::win32
