// What a power cut leaves of a file that is replaced: the old contents or all of the new ones.

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>

#include "support/host_files.h"

namespace {
thread_local std::vector<std::string> calls;  // of the system, in order
}  // namespace

// These take the place of the C library's functions in the whole program.
extern "C" int fsync(int descriptor) {
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor));
  calls.push_back("flush " + path.string());
  if (!is_directory(path)) calls.back() += ", " + std::to_string(file_size(path)) + " bytes";
  return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned flags) noexcept {
  calls.push_back("rename " + std::filesystem::canonical(from).string());
  return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

namespace rotacasts::host {
namespace {

TEST_F(HostFilesTest, TheNewFileIsFlushedBeforeItReplacesTheOldOneAndTheFolderAfterwards) {
  for (const auto& [key, size] : {std::pair("1", 10), {"2", 15}}) {  // a new file, then an old one
    calls.clear();
    Set("S", key, "x");
    ASSERT_EQ(calls.size(), 3U) << ::testing::PrintToString(calls);
    const std::string made = calls[1].substr(std::string("rename ").size());
    EXPECT_EQ(calls[0], "flush " + made + ", " + std::to_string(size) + " bytes");
    EXPECT_EQ(calls[2], "flush " + std::filesystem::canonical(folder.Path()).string());
  }
}

}  // namespace
}  // namespace rotacasts::host
