// The stand-alone host's files where this system has more to keep: links, owners, a full disk.

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "support/host_files.h"

namespace rotacasts::host {
namespace {

TEST_F(HostFilesTest, ReplacingKeepsPermissionsLinksAndReadersAndLeavesNothingBeside) {
  folder.Write("real.ini", "[S]\r\n");
  const auto status = [this] {
    struct stat found {};
    ::stat(folder.File("real.ini").c_str(), &found);
    return std::vector<unsigned>{found.st_mode & 07777, found.st_uid, found.st_gid};
  };
  [[maybe_unused]] const int given = ::chown(folder.File("real.ini").c_str(), 1234, 2345);
  ::chmod(folder.File("real.ini").c_str(), 02640);
  const std::vector<unsigned> before = status();
  std::filesystem::create_symlink("real.ini", folder.File("a.ini"));
  std::ifstream reader(folder.File("real.ini"));  // sees the old file
  Set("S", "1", "x");
  EXPECT_EQ((std::ostringstream() << reader.rdbuf()).str(), "[S]\r\n");
  EXPECT_EQ(folder.Read("real.ini"), "[S]\r\n1=x\r\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("a.ini")));
  EXPECT_EQ(status(), before);
  EXPECT_EQ(Count(), 2);
}

TEST_F(HostFilesTest, ALinkToWhatIsNoFileIsAnErrorAndNoWait) {
  ::mkfifo(folder.File("pipe").c_str(), 0600);
  for (const char* target : {".", "pipe"}) {
    std::filesystem::create_symlink(target, folder.File("a.ini"));
    EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 75) << target;
    EXPECT_EQ(ErrorOf([&] { machine.Replace(file, "x", nullptr); }), 75) << target;
    EXPECT_NE(ErrorOf([&] { utility.AppendFile(file, "x"); }), 0) << target;
    std::filesystem::remove(folder.File("a.ini"));
  }
}

/// Simulates a full disk: no file of this process can exceed this many bytes.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit now{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &now);
  }
  ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST_F(HostFilesTest, AFullDiskOrAFolderThatMayNotChangeLeavesEverythingAsItWas) {
  folder.Write("a.ini", "[S]\r\n1=a");
  folder.Write("log", "one");
  const auto change = [this](const char* flag) {  // not every file system and user can do this
    return std::system(("chattr " + (flag + (" " + folder.Path())) + " 2>&-").c_str()) == 0;
  };
  if (change("+i")) {
    EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 70);
    EXPECT_TRUE(change("-i"));
  }
  const FullDisk full(20);
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", std::string(30, 'x')); }), 61);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(log, std::string(30, 'x')); }), 61);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("log"), "[S]\r\n1=aone");
  EXPECT_EQ(Count(), 2);
}

}  // namespace
}  // namespace rotacasts::host
