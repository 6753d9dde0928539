// The stand-alone host's components on a real folder.
#pragma once

#include "siblings/utility_component.h"
#include "support/fake_host.h"
#include "support/host_folder.h"

namespace rotacasts {
inline namespace testing {

struct FixedClock final : public LocalClock {
  LocalTime Now() const override { return {2010, 3, 7, 14, 5, 9}; }
};

class HostFilesTest : public ::testing::Test {
 protected:
  void Set(const char* section, const UtilityComponent::Key& key,
           const std::optional<std::string>& value) {
    utility.WriteIniKey(section, key, value, file);
  }
  /// The number of files and folders in the folder.
  std::ptrdiff_t Count() const {
    return std::distance(std::filesystem::directory_iterator(folder.Path()), {});
  }
  TestFolder folder;
  FixedClock clock;
  host::MachineFiles machine;
  host::IniFiles ini{machine};
  host::HostUtilityComponent utility{folder.Path(), clock, ini};
  std::string file = folder.Path() + "\\a.ini";  // in the host suite's form
  const std::string log = folder.Path() + "\\log";
};

}  // namespace testing
}  // namespace rotacasts
