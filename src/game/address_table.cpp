#include "game/address_table.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace rotacasts {
namespace {

/// One location in every build, in the order in which the maps are filled. 0 means no entry.
struct AddressRow {
  std::string_view name;
  std::array<std::int32_t, 6> addresses;
};

/// The columns of the address table.
enum Build { kAff, kAff2, kDfbhdBuild, kJo, kJo2, kDfx2, kBuilds };

// Source: the fixed addresses of the game builds that the plugin's descriptor lists.
// clang-format off
constexpr std::array<AddressRow, 11> kAddresses = {{
    //                                _AFF        _AFF2       DFBHD       JO          JO_2        DFX2
    {location::kGameState,       {{0x011E1408, 0x00C63CB0, 0x009E4748, 0x00C87598, 0x011EEDB0, 0x00C805D0}}},
    {location::kMapNames,        {{0x01166384, 0x0252F5E4, 0x00A3F897, 0x02551118, 0x01173D80, 0x0254F6CC}}},
    {location::kMapPointer,      {{0x01166174, 0x00C63C6C, 0x009ED5F8, 0x00C86FDC, 0x01173B74, 0x00C8058C}}},
    {location::kTotalMaps,       {{0x01166388, 0x0252F5E8, 0,          0x0255111C, 0x01173D84, 0x0254F6D0}}},
    {location::kPlayerStats,     {{0x02A197F4, 0x0249D938, 0x009ED600, 0x024C0CC4, 0x02A27180, 0x024BA258}}},
    {location::kServerDedicated, {{0x00D29D70, 0x0252EF84, 0x00A34484, 0x02550AB8, 0x00D50094, 0x024BAEC4}}},
    {location::kBlueScore,       {{0x00C9FA5C, 0x0249E604, 0x009E084C, 0x00C87D1C, 0x00CC75B4, 0x024BAF24}}},
    {location::kRedScore,        {{0x00C9FA60, 0x0249E608, 0x009E0934, 0x00C87E70, 0x00CC75B8, 0x024BAF28}}},
    {location::kMaxPlayers,      {{0x00D29D64, 0x0252EF78, 0x00A03430, 0x00C8761C, 0x00D50088, 0x00C80BCC}}},
    {location::kCurrentPlayers,  {{0x0117952C, 0x00B3A198, 0x009DDA2C, 0x00B5DA1C, 0x011EBF94, 0x00B5715C}}},
    {location::kGameType,        {{0x02A1D8A8, 0x024C2378, 0x00A0342C, 0x024E3EF0, 0x02A2B250, 0x024DD4A0}}},
}};
// clang-format on

/// The locations that one build has.
struct BuildLocations {
  std::array<Location, kAddresses.size()> locations{};
  std::size_t count = 0;
};

constexpr BuildLocations LocationsOf(Build build) {
  BuildLocations result;
  for (const AddressRow& row : kAddresses) {
    if (row.addresses[build] != 0) {
      result.locations[result.count++] = {row.name, row.addresses[build]};
    }
  }
  return result;
}

constexpr std::array<BuildLocations, kBuilds> kMaps = {
    LocationsOf(kAff), LocationsOf(kAff2), LocationsOf(kDfbhdBuild),
    LocationsOf(kJo),  LocationsOf(kJo2),  LocationsOf(kDfx2)};

struct CodeRow {
  std::string_view gameCode;
  Build build;
};

constexpr CodeRow kCodes[] = {{kDfbhd, kDfbhdBuild}, {"JO", kJo}, {"JO_2", kJo2}, {"DFX2", kDfx2}};

MemoryMap MapOf(Build build) {
  const BuildLocations& map = kMaps[build];
  return MemoryMap(std::span(map.locations.data(), map.count));
}

}  // namespace

MemoryMap MemoryMapFor(bool isAffiliate, bool isAffiliate2, std::string_view gameCode) {
  if (isAffiliate) return MapOf(kAff);
  if (isAffiliate2) return MapOf(kAff2);
  for (const CodeRow& row : kCodes) {
    if (row.gameCode == gameCode) return MapOf(row.build);
  }
  return {};
}

std::vector<std::string> GameCodes() {
  std::vector<std::string> codes;
  for (const CodeRow& row : kCodes) {
    for (const std::string_view ending :
         {std::string_view(), kAffiliateEnding, kAffiliate2Ending}) {
      codes.push_back(std::string(row.gameCode).append(ending));
    }
  }
  return codes;
}

}  // namespace rotacasts
