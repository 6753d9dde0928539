#include "game/game_reader.h"

#include "game/game_builds.h"
#include "game/process_view.h"

namespace rotacasts {
namespace {

// The game states in which a game is in progress.
constexpr std::int32_t kRunningStates[] = {2, 3};

/// The map rotation of "DFBHD", in bytes: offsets in the rotation structure, size of a name record.
namespace dfbhd {
constexpr std::int32_t kMapCount = 8;
constexpr std::int32_t kCurrentPosition = 12;
constexpr std::int32_t kNameRecord = 1840;
}  // namespace dfbhd

/// The map rotation of every other build.
namespace common {
constexpr std::int32_t kEntryCount = 4;
constexpr std::int32_t kCurrentPosition = 12;
constexpr std::int32_t kEntries = 20;
constexpr std::int32_t kEntrySize = 8;
constexpr std::int32_t kMapRecord = 4584;
constexpr std::int32_t kNameInRecord = 1044;
}  // namespace common

/// The rotation wraps after its last entry and nowhere else.
Checked NextPosition(std::int32_t count, std::int32_t current) {
  const bool isLast = current == (Checked(count) - 1).Value();
  return isLast ? Checked(0) : Checked(current) + 1;
}

std::string NextMapName(const ProcessView& process, Step& at) {
  at(1);
  const Checked rotation = process.ReadLong(location::kMapPointer);
  at(2);
  const std::int32_t count = process.ReadLong(rotation + dfbhd::kMapCount);
  const std::int32_t current = process.ReadLong(rotation + dfbhd::kCurrentPosition);
  at(3);
  const Checked next = NextPosition(count, current);
  at(4);
  const Checked names = process.Address(location::kMapNames);
  return process.ReadStr(names + next * dfbhd::kNameRecord);
}

std::string NextMapNameJO(const ProcessView& process, Step& at) {
  at(1);
  const Checked rotation = process.ReadLong(location::kMapPointer);
  at(2);
  const std::int32_t count = process.ReadLong(rotation + common::kEntryCount);
  const std::int32_t current = process.ReadLong(rotation + common::kCurrentPosition);
  at(3);
  const Checked next = NextPosition(count, current);
  at(4);
  const Checked map = process.ReadLong(rotation + common::kEntries + next * common::kEntrySize);
  at(5);
  const Checked maps = process.ReadLong(location::kMapNames);
  at(6);
  return process.ReadStr(maps + map * common::kMapRecord + common::kNameInRecord);
}

}  // namespace

void GameReader::SetMemory(std::int32_t profileIndex, bool isAffiliate) {
  Guard(errors_, {"SetMemory", profileIndex}, [&](Step& at) {
    at(1);
    tables_.MemoryMaps(profileIndex) = MemoryMap();
    at(2);
    const ProfileRecord& record = tables_.Profiles(profileIndex);
    tables_.MemoryMaps(profileIndex) =
        MemoryMapFor(isAffiliate, record.IsAffiliate2, record.GameCode);
  });
}

bool GameReader::HasMemoryMap(std::int32_t profileIndex) const {
  try {
    return std::as_const(tables_).MemoryMaps(profileIndex).Holds(location::kGameState);
  } catch (...) {
    return false;
  }
}

bool GameReader::IsGameRunning(std::int32_t profileIndex) const {
  const std::int32_t state =
      ProcessView(source_, tables_, profileIndex).ReadLong(location::kGameState);
  return std::find(std::begin(kRunningStates), std::end(kRunningStates), state) !=
         std::end(kRunningStates);
}

std::string GameReader::GetNextMap(std::int32_t profileIndex) {
  std::string text;
  Guard(errors_, {"GetNextMap", profileIndex}, [&](Step& at) {
    text = std::string(kNextMapLabel) + NextMapName({source_, tables_, profileIndex}, at);
  });
  return text;
}

std::string GameReader::GetNextMapJO(std::int32_t profileIndex) {
  std::string text = "Unknown!!!";
  Guard(errors_, {"GetNextMapJO", profileIndex, true}, [&](Step& at) {
    text = std::string(kNextMapLabel) + NextMapNameJO({source_, tables_, profileIndex}, at);
  });
  return text;
}

}  // namespace rotacasts
