#include "game/game_builds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace rotacasts {
namespace {

/// The locations, in the order in which a build's addresses stand in its row.
constexpr std::array kLocations = {
    location::kGameState,   location::kMapNames,        location::kMapPointer, location::kTotalMaps,
    location::kPlayerStats, location::kServerDedicated, location::kBlueScore,  location::kRedScore,
    location::kMaxPlayers,  location::kCurrentPlayers,  location::kGameType};

struct BuildRow {
  std::string_view code;  // of the game, or the ending of an affiliate server's
  Family family;
  const char* title;
  std::array<std::int32_t, kLocations.size()> addresses;  // 0: the build has no such location
};

// clang-format off
// Source: the fixed addresses of the game builds that the plugin's descriptor lists, in its order.
constexpr BuildRow kBuilds[] = {
    {"DFBHD", Family::Dfbhd, "Delta Force,  V1.5.0.5",
     {0x009E4748, 0x00A3F897, 0x009ED5F8, 0, 0x009ED600, 0x00A34484,
      0x009E084C, 0x009E0934, 0x00A03430, 0x009DDA2C, 0x00A0342C}},
    {"JO", Family::Common, "Joint Operations: Typhoon Rising V1.6.9.2",
     {0x00C87598, 0x02551118, 0x00C86FDC, 0x0255111C, 0x024C0CC4, 0x02550AB8,
      0x00C87D1C, 0x00C87E70, 0x00C8761C, 0x00B5DA1C, 0x024E3EF0}},
    {"JO_2", Family::Common, "Joint Operations: Typhoon Rising V1.7.5.7",
     {0x011EEDB0, 0x01173D80, 0x01173B74, 0x01173D84, 0x02A27180, 0x00D50094,
      0x00CC75B4, 0x00CC75B8, 0x00D50088, 0x011EBF94, 0x02A2B250}},
    {kAffiliateEnding, Family::Common, "Joint Operations: Typhoon Rising, NovaWorld Affiliate Server V1.6.9.2A",
     {0x011E1408, 0x01166384, 0x01166174, 0x01166388, 0x02A197F4, 0x00D29D70,
      0x00C9FA5C, 0x00C9FA60, 0x00D29D64, 0x0117952C, 0x02A1D8A8}},
    {kAffiliate2Ending, Family::Common, "Joint Operations: Typhoon Rising, NovaWorld Affiliate Server V1.7.5.7A",
     {0x00C63CB0, 0x0252F5E4, 0x00C63C6C, 0x0252F5E8, 0x0249D938, 0x0252EF84,
      0x0249E604, 0x0249E608, 0x0252EF78, 0x00B3A198, 0x024C2378}},
    {"DFX2", Family::Common, "DeltaForce: Xtreme 2 V1.7.5.7",
     {0x00C805D0, 0x0254F6CC, 0x00C8058C, 0x0254F6D0, 0x024BA258, 0x024BAEC4,
      0x024BAF24, 0x024BAF28, 0x00C80BCC, 0x00B5715C, 0x024DD4A0}},
};
// clang-format on
constexpr std::size_t kBuildCount = std::size(kBuilds);

/// One build's locations, without those that it lacks.
struct BuildLocations {
  std::array<Location, kLocations.size()> locations{};
  std::size_t count = 0;
};

constexpr std::array<BuildLocations, kBuildCount> LocationsOfBuilds() {
  std::array<BuildLocations, kBuildCount> maps;
  for (std::size_t build = 0; build < kBuildCount; ++build) {
    for (std::size_t i = 0; i < kLocations.size(); ++i) {
      const std::int32_t address = kBuilds[build].addresses[i];
      if (address != 0) maps[build].locations[maps[build].count++] = {kLocations[i], address};
    }
  }
  return maps;
}
constexpr std::array<BuildLocations, kBuildCount> kMaps = LocationsOfBuilds();

/// The row of a code or an ending; the table's end for any other.
const BuildRow* Find(std::string_view code) {
  return std::ranges::find(kBuilds, code, &BuildRow::code);
}

bool IsEnding(const BuildRow& row) {
  return row.code == kAffiliateEnding || row.code == kAffiliate2Ending;
}

}  // namespace

Family FamilyOf(std::string_view gameCode) {
  const BuildRow* row = Find(gameCode);
  return row != std::end(kBuilds) ? row->family : Family::Common;
}

MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode) {
  const BuildRow* row = Find(isAffiliate    ? kAffiliateEnding
                             : isAffiliate2 ? kAffiliate2Ending
                                            : gameCode);
  if (row == std::end(kBuilds)) return {};
  const BuildLocations& map = kMaps[static_cast<std::size_t>(row - kBuilds)];
  return MemoryMap(std::span(map.locations.data(), map.count));
}

std::vector<std::string> GameTitles() {
  std::vector<std::string> titles;
  for (const BuildRow& row : kBuilds) titles.emplace_back(row.title);
  return titles;
}

std::vector<std::string> GameCodes() {
  std::vector<std::string> codes;
  for (const BuildRow& row : kBuilds) {
    if (IsEnding(row)) continue;
    for (const std::string_view ending :
         {std::string_view(), kAffiliateEnding, kAffiliate2Ending}) {
      codes.push_back(std::string(row.code).append(ending));
    }
  }
  return codes;
}

}  // namespace rotacasts
