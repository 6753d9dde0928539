// A host's profile data array, by name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/conversions.h"
#include "base/host_value.h"

namespace rotacasts {

/// The elements of the array that are read, for hosts that fill it.
namespace pdat {
inline constexpr std::size_t kData0 = 0;
inline constexpr std::size_t kGameCode = 1;
inline constexpr std::size_t kProcessHandle = 2;
inline constexpr std::size_t kData3 = 3;
inline constexpr std::size_t kData4 = 4;
inline constexpr std::size_t kData5 = 5;
inline constexpr std::size_t kMessageTarget = 6;
inline constexpr std::size_t kProfileFolder = 7;
inline constexpr std::size_t kAdministrator = 10;
inline constexpr std::size_t kSharedLog = 11;
inline constexpr std::size_t kAreaHeight = 12;
inline constexpr std::size_t kAreaWidth = 13;
inline constexpr std::size_t kSize = 14;
}  // namespace pdat

/// Reads the array that a host hands over with a call. An element is converted when it is asked
/// for: error 13 where this is no array or the element has no such value, 9 beyond the bounds.
class ProfileData {
 public:
  /// `array` outlives this.
  explicit ProfileData(const HostValue& array) : array_(array) {}

  // What the host means by these four is its own business.
  std::string Data0() const { return Text(pdat::kData0); }
  std::string Data3() const { return Text(pdat::kData3); }
  std::string Data4() const { return Text(pdat::kData4); }
  std::string Data5() const { return Text(pdat::kData5); }

  std::string GameCode() const { return Text(pdat::kGameCode); }
  std::int32_t ProcessHandle() const { return ToLong(array_.At(pdat::kProcessHandle)); }
  std::int32_t MessageTarget() const { return ToLong(array_.At(pdat::kMessageTarget)); }
  std::string ProfileFolder() const { return Text(pdat::kProfileFolder); }
  /// The name of the remote administrator.
  std::string Administrator() const { return Text(pdat::kAdministrator); }
  /// Whether changes are logged below the host folder, and not in the profile's.
  bool UsesSharedLog() const { return EqualsTrue(array_.At(pdat::kSharedLog)); }
  /// The host's plugin area, in twips.
  std::int32_t AreaHeight() const { return ToLong(array_.At(pdat::kAreaHeight)); }
  std::int32_t AreaWidth() const { return ToLong(array_.At(pdat::kAreaWidth)); }

 private:
  std::string Text(std::size_t element) const { return rotacasts::ToText(array_.At(element)); }

  const HostValue& array_;
};

}  // namespace rotacasts
