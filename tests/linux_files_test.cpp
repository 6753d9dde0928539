// The stand-alone host's files where this system has more to keep: links, owners, a full disk.

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "files/host_lock.h"
#include "files/linux/beside_file.h"
#include "files/native_files.h"
#include "host/host_profiles.h"
#include "support/host_files.h"

namespace rotacasts::host {
namespace {

constexpr gid_t kGroup = 2345;

/// What `act` returns when another user of that group runs it; 0 to 255.
int AsOtherUser(const std::function<int()>& act) {
  const pid_t child = ::fork();
  if (child == 0) {
    const bool isOther = ::setgroups(0, nullptr) == 0 && ::setresgid(kGroup, kGroup, kGroup) == 0 &&
                         ::setresuid(4321, 4321, 4321) == 0;
    ::_exit(isOther ? act() : 255);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WEXITSTATUS(status);
}

TEST_F(HostFilesTest, ReplacingKeepsPermissionsLinksAndReadersAndLeavesNothingBeside) {
  folder.Write("real.ini", "[S]\r\n");
  const auto status = [this] {
    struct stat found {};
    ::stat(folder.File("real.ini").c_str(), &found);
    return std::vector<unsigned>{found.st_mode & 07777, found.st_uid, found.st_gid};
  };
  [[maybe_unused]] const int given = ::chown(folder.File("real.ini").c_str(), 1234, 2345);
  ::chmod(folder.File("real.ini").c_str(), 02640);
  const std::string name = folder.File("real.ini");
  const std::string list(
      "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\6\0\7\0\0\0\4\0\0\0\xFF\xFF\xFF\xFF"
      "\x10\0\4\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF",
      44);
  const bool hasLists =  // not every file system has
      ::setxattr(name.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) == 0 &&
      ::setxattr(name.c_str(), "user.note", "x", 1, 0) == 0;
  const std::vector<unsigned> before = status();
  std::filesystem::create_symlink("real.ini", folder.File("a.ini"));
  std::ifstream reader(folder.File("real.ini"));  // sees the old file
  Set("S", "1", "x");
  EXPECT_EQ((std::ostringstream() << reader.rdbuf()).str(), "[S]\r\n");
  EXPECT_EQ(folder.Read("real.ini"), "[S]\r\n1=x\r\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("a.ini")));
  EXPECT_EQ(status(), before);
  char kept[64];
  const ssize_t size = ::getxattr(name.c_str(), "system.posix_acl_access", kept, sizeof kept);
  EXPECT_EQ(std::string(kept, size > 0 ? static_cast<std::size_t>(size) : 0), hasLists ? list : "");
  EXPECT_EQ(::getxattr(name.c_str(), "user.note", kept, sizeof kept), hasLists ? 1 : -1);
  EXPECT_EQ(Count(), 2);
}

TEST_F(HostFilesTest, AnotherUsersFileIsLeftAloneUntilItIsQuiet) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be two users";
  ASSERT_EQ(::chown(folder.Path().c_str(), 0, kGroup), 0);
  ::chmod(folder.Path().c_str(), 02770);
  folder.Write("a.ini", "");
  ASSERT_EQ(::chown(folder.File("a.ini").c_str(), 1234, kGroup), 0);
  ::chmod(folder.File("a.ini").c_str(), 0660);
  const auto set = [&] { return ErrorOf([&] { Set("S", "2", "x"); }); };
  for (const char* part : {"[S]\r\n", "1=a", "b\r\n"}) {
    EXPECT_EQ(AsOtherUser([&] {
                std::ofstream(folder.File("a.ini"), std::ios::app | std::ios::binary) << part;
                return set();
              }),
              70);
  }
  ::usleep(600'000);
  EXPECT_EQ(AsOtherUser([&] {  // its own processes it can see
              const std::ofstream writer(folder.File("a.ini"), std::ios::app);
              return set();
            }),
            70);
  ::usleep(600'000);
  EXPECT_EQ(AsOtherUser(set), 0);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=ab\r\n2=x\r\n");
}

TEST_F(HostFilesTest, AProfileThatCannotBeEnteredIsNotRemoved) {
  if (::geteuid() != 0) GTEST_SKIP() << "root enters everything";
  folder.AddProfile(1, "JO", "no-such-program", "4001");
  HostProfiles profiles(folder.Path(), std::cout);
  EXPECT_EQ(AsOtherUser([&] { return static_cast<int>(profiles.RereadAll().removed.size()); }), 0);
  ::chmod(folder.File("profiles/srv1").c_str(), 0700);
  EXPECT_EQ(AsOtherUser([&] { return static_cast<int>(profiles.RereadAll().removed.size()); }), 0);
  std::filesystem::remove_all(folder.File("profiles/srv1"));
  EXPECT_EQ(profiles.RereadAll().removed.size(), 1U);
}

TEST_F(HostFilesTest, ARemovedLockLetsNoSecondHostInAndOneThatIsNoFileSaysWhatToDo) {
  {
    const HostLock first(folder.Path(), "noon");
    std::filesystem::remove(folder.File("host.lock"));
    EXPECT_EQ(HostLock(folder.Path(), "noon").Holder(), "another process");
  }
  EXPECT_EQ(HostLock(folder.Path(), "noon").Holder(), "");
  std::filesystem::remove(folder.File("host.lock"));
  std::filesystem::create_directory(folder.File("host.lock"));
  const RuntimeError error = ThrownBy([&] { HostLock(folder.Path(), "noon"); });
  EXPECT_NE(error.description.find("remove it"), std::string::npos) << error.description;
}

TEST_F(HostFilesTest, AFileLeftBesideAnotherIsKeptUnlessItIsCertainlyTheOldListOrTheNew) {
  struct Case {
    bool isMovedAside;
    const char* bytes;
    const char* place;
    bool isKept;
  };
  const std::string old = "old";
  for (const auto& [isMovedAside, bytes, place, isKept] : {Case{false, "old", "new", false},
                                                           {false, "new", "save", false},
                                                           {false, "part of", "old", false},
                                                           {false, "save", "new", true},
                                                           {true, "old", "new", false},
                                                           {true, "old", "save", true},
                                                           {true, "save", "new", true}}) {
    const std::filesystem::path settings = folder.File("left");
    std::filesystem::remove_all(settings);
    std::filesystem::create_directory(settings);
    const std::string beside = BesideName::Template(settings / "list", "new", &old);
    std::ofstream(isMovedAside ? BesideName::ForOld(beside) : beside) << bytes;
    std::ofstream(settings / "list") << place;
    EXPECT_EQ(TidyLeftovers(settings.string()), std::vector<std::string>());
    const std::filesystem::directory_iterator left(settings);
    EXPECT_EQ(std::distance(begin(left), end(left)), isKept ? 2 : 1) << bytes << ", " << place;
  }
}

TEST_F(HostFilesTest, ALinkToWhatIsNoFileIsAnErrorAndNoWait) {
  ::mkfifo(folder.File("pipe").c_str(), 0600);
  for (const char* target : {".", "pipe", "nothing", "a.ini"}) {
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

TEST_F(HostFilesTest, AFullDiskLeavesEverythingAsItWas) {
  folder.Write("a.ini", "[S]\r\n1=a");
  folder.Write("log", "one");
  const FullDisk full(20);
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", std::string(30, 'x')); }), 61);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(log, std::string(30, 'x')); }), 61);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("log"), "[S]\r\n1=aone");
  EXPECT_EQ(Count(), 2);
}

}  // namespace
}  // namespace rotacasts::host
