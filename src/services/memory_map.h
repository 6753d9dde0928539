// A profile's memory map: where its game build keeps the values that the plugin reads.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace rotacasts {

/// A named place in a game server's process memory.
struct Location {
  std::string_view name;
  std::int32_t address;
};

/// A profile's memory map: the locations of its game build, or none for an unknown build.
class MemoryMap {
 public:
  MemoryMap() = default;
  /// `locations` is part of the address table and must outlive the map.
  explicit MemoryMap(std::span<const Location> locations) : locations_(locations) {}

  bool Holds(std::string_view name) const { return Find(name) != nullptr; }
  /// The address of a location. Errors: 5, naming the location, if the map lacks it.
  std::int32_t Address(std::string_view name) const;
  bool IsEmpty() const { return locations_.empty(); }
  std::span<const Location> All() const { return locations_; }

 private:
  const Location* Find(std::string_view name) const;

  std::span<const Location> locations_;
};

}  // namespace rotacasts
