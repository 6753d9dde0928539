#include "plugin/profiles.h"

#include <utility>

#include "base/conversions.h"
#include "game/game_builds.h"
#include "services/host_folder.h"

namespace rotacasts {
namespace {

template <class Element>
void GrowToReach(Table<Element>& table, std::int32_t index) {
  if (!ArrayInit(table)) table.Resize(0);
  if (table.UpperBound() < index) table.GrowTo(index);
}

}  // namespace

void FillRecord(ProfileRecord& record, const ProfileData& data) {
  record.Data0 = data.Data0();
  record.GameCode = data.GameCode();
  record.ProcessHandle = data.ProcessHandle();
  record.Data3 = data.Data3();
  record.Data4 = data.Data4();
  record.Data5 = data.Data5();
  record.MessageTarget = data.MessageTarget();
  record.ProfileFolder = data.ProfileFolder();
  record.IsAffiliate = record.GameCode.ends_with(kAffiliateEnding);
  record.IsAffiliate2 = record.GameCode.ends_with(kAffiliate2Ending);
}

void Profiles::GrowTables(std::int32_t index) {
  GrowToReach(tables_.Profiles, index);
  GrowToReach(tables_.MemoryMaps, index);
  GrowToReach(tables_.MessageFiles, index);
  GrowToReach(tables_.NextMessage, index);
  GrowToReach(tables_.ElapsedTicks, index);
}

void Profiles::SetProfileData(std::int32_t Index, const ProfileData& PDAT) {
  Guard(errors_, {"SetProfileData", Index}, [&](Step& at) {
    at(1);
    GrowTables(Index);
    at(2);
    ProfileRecord& record = tables_.Profiles(Index);
    const ProfileRecord before = record;
    FillRecord(record, PDAT);
    if (record != before) ++tables_.Events[Index].loads;
    at(3);
    game_.SetMemory(Index, record.IsAffiliate);
    at(4);
    std::string& path = tables_.MessageFiles(Index);
    path.clear();  // a refused folder must not leave the last one's file to the window
    path = HostFolder(services_.HostFolder()).MessageFile(record.ProfileFolder);
  });
}

void Profiles::DisableProfile(std::int32_t Index) {
  const auto ifThere = [](auto&& statement) {
    ResumeNext({ErrorNumber::SubscriptOutOfRange, ErrorNumber::NoSuchArrayElement}, statement);
  };
  Guard(errors_, {"DisableProfile", Index}, [&](Step& at) {
    if (const auto known = tables_.Events.find(Index); known != tables_.Events.end()) {
      ++known->second.stops;
    }
    at(1);
    ifThere([&] { tables_.MemoryMaps(Index) = MemoryMap(); });
    at(2);
    // Without a window there is no timer, and none is made for this; nor is there one for an index
    // beyond the timers' 16 bits.
    if (const auto window = window_.IfLoaded(); window && std::in_range<std::int16_t>(Index)) {
      const auto element = static_cast<std::int16_t>(Index);
      ifThere([&] { window->Timers().SetEnabled(element, false); });
      ifThere([&] { window->Timers().SetInterval(element, 0); });
      ifThere([&] { window->Timers().Unload(element); });
    }
    at(3);
    ifThere([&] { tables_.MessageFiles(Index).clear(); });
    at(4);
    ifThere([&] { tables_.NextMessage(Index) = 0; });
    ifThere([&] { tables_.ElapsedTicks(Index) = 0; });
  });
}

void Profiles::ResetRunTimeTables() {
  for (auto& [index, events] : tables_.Events) ++events.stops;
  tables_.MemoryMaps.Resize(0);
  tables_.MessageFiles.Resize(0);
  tables_.NextMessage.Resize(0);
  tables_.ElapsedTicks.Resize(0);
}

}  // namespace rotacasts
