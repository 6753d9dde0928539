// The stand-alone host's files: INI files, logs, reports, and what goes wrong with them.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/check.h"
#include "host/components/error_log.h"
#include "host/components/host_file_system.h"
#include "host/components/utility_component.h"
#include "host/machine/base64.h"
#include "host/machine/native_files.h"
#include "host/profile_settings.h"
#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/host_folder.h"

namespace rotacasts::host {
namespace {

using testing::ErrorOf;
using testing::HostFolder;

struct FixedClock final : public LocalClock {
  LocalTime Now() const override { return {2010, 3, 7, 14, 5, 9}; }
};

class HostFilesTest : public ::testing::Test {
 protected:
  void Set(const char* section, const UtilityComponent::Key& key,
           const std::optional<std::string>& value) {
    utility.WriteIniKey(section, key, value, file);
  }
  /// Files and folders in the folder.
  std::ptrdiff_t Count() const {
    return std::distance(std::filesystem::directory_iterator(folder.Path()), {});
  }
  HostFolder folder;
  FixedClock clock;
  MachineFiles machine;
  IniFiles ini{machine};
  HostUtilityComponent utility{folder.Path(), clock, ini};
  std::string file = folder.Path() + "\\a.ini";  // the host suite's spelling
};

TEST_F(HostFilesTest, IniKeysAreWrittenAsWindows1252AndReadBack) {
  Set("S", "Key", " Grüße € = 1 ");
  EXPECT_EQ(folder.Read("a.ini"),
            "[S]\r\nKey= Gr\xFC\xDF"
            "e \x80 = 1 \r\n");
  EXPECT_EQ(utility.GetIniKey("s", "KEY", file), " Grüße € = 1 ");
  Set("S", 7, "seven");
  EXPECT_EQ(utility.GetIniSection("S", file),
            (std::vector<std::string>{"Key= Grüße € = 1 ", "7=seven", ""}));
  Set("S", "Key", std::nullopt);
  Set("S", UtilityComponent::kNullKey, std::nullopt);
  EXPECT_EQ(folder.Read("a.ini"), "");
  std::string missing = folder.Path() + "\\none\\b.ini";
  EXPECT_EQ(utility.GetIniKey("S", "k", missing), "");
  EXPECT_EQ(utility.GetIniSection("S", missing).size(), 1U);
}

TEST_F(HostFilesTest, WhatAnIniFileCannotHoldIsRefusedBeforeAnythingIsWritten) {
  Set("S", "1", "a");
  const std::string before = folder.Read("a.ini");
  const std::string nul("a\0b", 3);
  for (const std::string& bad :
       {std::string("a\r\nb"), std::string("a\n"), nul, std::string("Ł"), std::string("\xFF")}) {
    EXPECT_EQ(ErrorOf([&] { Set("S", "2", bad); }), 5);
    EXPECT_EQ(ErrorOf([&] { Set("S", bad, "text"); }), 5);
  }
  for (const char* key : {"", "a=b", ";a", "#a", "[a", " a", "a "}) {
    EXPECT_EQ(ErrorOf([&] { Set("S", key, "text"); }), 5) << key;
  }
  EXPECT_EQ(folder.Read("a.ini"), before);
  file.clear();
  EXPECT_EQ(ErrorOf([&] { Set("S", "1", "a"); }), 76);
  EXPECT_EQ(ErrorOf([&] { utility.GetIniSection("S", file); }), 76);
}

TEST_F(HostFilesTest, AFileThatCannotBeUsedIsNamedAndStaysAsItIs) {
  for (const auto& [bytes, says] : {std::pair(std::string("[S]\r\n1=a\0b", 11), "NUL"),
                                    {"\xEF\xBB\xBF[S]", "UTF-8"},
                                    {"\xFF\xFE[\0S\0", "UTF-16"}}) {
    folder.Write("a.ini", bytes);
    try {
      Set("S", "1", "x");
      ADD_FAILURE() << says;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.number, 321);
      EXPECT_NE(error.description.find(folder.File("a.ini")), std::string::npos);
      EXPECT_NE(error.description.find(says), std::string::npos) << error.description;
    }
    EXPECT_EQ(folder.Read("a.ini"), bytes);
  }
  folder.Write("a.ini", "[S]\r\n1=a\r\n");
  ::chmod(folder.File("a.ini").c_str(), 0444);
  EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 70);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=a\r\n");
  Set("S", "1", "a");  // nothing to change, nothing to complain about
  file = folder.Path() + "\\none\\a.ini";
  EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 76);
  file = folder.Path();
  EXPECT_NE(ErrorOf([&] { Set("S", "1", "x"); }), 0);
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

TEST_F(HostFilesTest, WhatIsNoFileIsAnErrorAndNoWait) {
  const std::string place = folder.File("a.ini");
  const auto check = [&](const char* kind) {
    EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 75) << kind;
    EXPECT_EQ(ErrorOf([&] { machine.Replace(file, "x", nullptr); }), 75) << kind;
    EXPECT_NE(ErrorOf([&] { utility.AppendFile(file, "x"); }), 0) << kind;
    std::filesystem::remove(place);
  };
  std::filesystem::create_directory(place);
  check("folder");
  ::mkfifo(place.c_str(), 0600);
  check("pipe");
  ::mkfifo(folder.File("pipe").c_str(), 0600);
  std::filesystem::create_symlink("pipe", place);
  check("link to a pipe");
}

TEST_F(HostFilesTest, AFullDiskLeavesEverythingAsItWas) {
  folder.Write("a.ini", "[S]\r\n1=a");
  folder.Write("log", "one");
  const testing::FullDisk full(20);
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", std::string(30, 'x')); }), 61);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(folder.Path() + "\\log", std::string(30, 'x')); }),
            61);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("log"), "[S]\r\n1=aone");
  EXPECT_EQ(Count(), 2);
}

TEST_F(HostFilesTest, AnOperationIsOneChangeThatTheLogTellsOfAfterwards) {
  folder.Write("a.ini", "[S]\r\n");
  folder.Write("log", "begun");
  EXPECT_EQ(ini.Run([&] {
    Set("S", "1", "x");
    Set("S", "2", "y");
    EXPECT_EQ(utility.GetIniKey("S", "2", file), "y");
    EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n");
    utility.AppendFile(folder.Path() + "\\log", "told");
    EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=x\r\n2=y\r\n");
    Set("S", "3", "z");
  }),
            std::nullopt);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=x\r\n2=y\r\n3=z\r\n");
  EXPECT_EQ(folder.Read("log"), "begun\r\ntold\r\n");
}

TEST_F(HostFilesTest, AnOperationIsDoneAnewOnWhatAnotherProgramHasSaved) {
  folder.Write("log", "");
  std::ofstream writer;
  for (const char* other : {"renamed", "in place", "gone"}) {
    SCOPED_TRACE(other);
    folder.Write("a.ini", "[S]\r\n1=a\r\n");
    int runs = 0;
    EXPECT_EQ(ini.Run([&] {
      Set("S", "2", "b");
      if (++runs == 1 && *other == 'r') {
        folder.Write("b.ini", "[S]\r\n1=c\r\n");
        std::filesystem::rename(folder.File("b.ini"), folder.File("a.ini"));
      } else if (runs == 1 && *other == 'i') {
        folder.Write("a.ini", "[S]\r\n1=d\r\n");
      } else if (runs == 1) {
        std::filesystem::remove(folder.File("a.ini"));
      }
      utility.AppendFile(folder.Path() + "\\log", other);
    }),
              std::nullopt);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(folder.Read("a.ini"), *other == 'r'   ? "[S]\r\n1=c\r\n2=b\r\n"
                                    : *other == 'i' ? "[S]\r\n1=d\r\n2=b\r\n"
                                                    : "[S]\r\n2=b\r\n");
  }
  EXPECT_EQ(folder.Read("log"), "renamed\r\nin place\r\ngone\r\n");
  writer.open(folder.File("a.ini"), std::ios::app);  // and keeps it open
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", "x"); }), 70);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n2=b\r\n");
}

TEST_F(HostFilesTest, ErrorsAreLoggedALineEachAndReportsAFileEach) {
  std::string procedure = "tmrRT";
  RuntimeError error(13, "Type\r\nmismatch ü");
  std::int32_t line = 4;
  utility.LogError("tvxRT.dll", procedure, error, line);
  utility.LogError("tvxRT.dll", procedure, error, line);
  const std::string entry =
      "2010-03-07 14:05:09 tvxRT.dll tmrRT line 4: error 13: Type  mismatch ü\r\n";
  EXPECT_EQ(folder.Read("logs/errors.log"), entry + entry);
  for (const char letter : {'a', 'b'}) {
    folder.Write("logs/errors.log", std::string(kLongestErrorLog, letter));
    utility.LogError("tvxRT.dll", procedure, error, line);
    EXPECT_EQ(folder.Read("logs/errors.log"), entry);
    EXPECT_EQ(folder.Read("logs/errors.old.log"), std::string(kLongestErrorLog, letter));
  }
  Variant report(Variant::Array{"13", "Type mismatch", "tvxRT.dll 1.0.0", "tmrRT", Variant(), 4});
  EXPECT_TRUE(utility.SendErrorReport(report));
  EXPECT_TRUE(utility.SendErrorReport(report));
  EXPECT_EQ(folder.Read("reports/2010-03-07 14-05-09 2.txt"),
            "Date: 2010-03-07 14:05:09\r\nError number: 13\r\nDescription: Type mismatch\r\n"
            "Module: tvxRT.dll 1.0.0\r\nProcedure: tmrRT\r\nAffiliate: \r\nLine: 4\r\n");
  std::filesystem::remove_all(folder.File("reports"));
  folder.Write("reports", "a file in the way");
  EXPECT_FALSE(utility.SendErrorReport(report));
}

TEST_F(HostFilesTest, TextFilesAreReadAndAppendedByTheLine) {
  HostFileSystem files(ini);
  const std::string log = folder.Path() + "\\new\\a.txt";
  EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(log); }), 76);
  EXPECT_EQ(ErrorOf([&] { files.CreateFolder(folder.Path() + "\\x\\y"); }), 76);
  files.CreateFolder(folder.Path() + "\\new");
  EXPECT_EQ(ErrorOf([&] { files.CreateFolder(folder.Path() + "\\new"); }), 58);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(log, "x"); }), 53);
  files.CreateTextFile(log);
  utility.AppendFile(log, "Grüße");
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(log, "two\nlines"); }), 5);
  utility.AppendFile(log, "");
  EXPECT_EQ(folder.Read("new/a.txt"),
            "Gr\xFC\xDF"
            "e\r\n\r\n");
  std::string path = log;
  EXPECT_EQ(utility.ReadFile(path), (std::vector<std::string>{"Grüße", ""}));
  EXPECT_TRUE(files.FileExists(log) && files.FolderExists(folder.Path() + "\\new"));
  EXPECT_FALSE(files.FileExists(folder.Path() + "\\new") || files.FolderExists(log));
}

TEST(Base64, DecodesItsOwnAndRefusesTheRest) {
  for (const std::string& text : {std::string(), std::string("a"), std::string("ab"),
                                  std::string("Grüße"), std::string("\0\xFF|", 3)}) {
    EXPECT_EQ(DecodeBase64(EncodeBase64(text)), text);
  }
  EXPECT_EQ(EncodeBase64(std::string(100, '\xFF')).find_first_of("|\r\n"), std::string::npos);
  for (const char* bad : {"A", "QQ", "QQ=", "QQ===", "Q=Q=", "QQ==\n", " QQ==", "Q!==", "===="}) {
    EXPECT_EQ(ErrorOf([&] { DecodeBase64(bad); }), 5) << bad;
  }
}

TEST(ProfileSettings, NonsenseIsSkippedAndSaysWhatToDo) {
  HostFolder folder;
  folder.AddProfile(5, "JO", "1234", "4005");
  folder.AddProfile(2, "DFBHD", "server.exe", " 65535 ");
  folder.AddProfile(12, "DFX2_AFF2", "1", "1");
  for (const auto& [index, code] : {std::pair(0, "JO"),
                                    {8, ""},
                                    {9, "Joint-Ops!"},
                                    {10, "jo"},
                                    {11, "JO_AFF3"},
                                    {32768, "JO"}}) {
    folder.AddProfile(index, code, "1", "1");
  }
  folder.AddProfile(7, "JO", "1", "65536");
  folder.Write("profiles/twin/profile.ini",
               "[Profile]\nIndex=5\nGameCode=JO\nProcess=1\nTarget=1\n");
  folder.Write("profiles/half/profile.ini", "[Profile]\nIndex=1.5\n");
  folder.Write("profiles/utf/profile.ini", "\xEF\xBB\xBF[Profile]\n");
  folder.Write("profiles/empty/readme.txt", "no profile");
  folder.Write("profiles/.../profile.ini",
               "[Profile]\nIndex=6\nGameCode=JO\nProcess=1\nTarget=1\n");
  const LoadedProfiles loaded = LoadProfiles(folder.Path());
  ASSERT_EQ(loaded.profiles.size(), 3U);
  EXPECT_EQ(loaded.profiles[0].Label(), "profile 2 (srv2)");
  EXPECT_EQ(loaded.profiles[0].target, 65535);
  EXPECT_EQ(loaded.profiles[1].process, "1234");
  EXPECT_EQ(loaded.profiles[2].gameCode, "DFX2_AFF2");
  ASSERT_EQ(loaded.problems.size(), 11U);
  EXPECT_EQ(loaded.problems[3], folder.File("profiles/srv10/profile.ini") +
                                    ":3: GameCode is \"jo\"; give one of DFBHD, DFBHD_AFF, "
                                    "DFBHD_AFF2, JO, JO_AFF, JO_AFF2, JO_2, JO_2_AFF, JO_2_AFF2, "
                                    "DFX2, DFX2_AFF, DFX2_AFF2");
  for (const std::string& problem : loaded.problems) {
    EXPECT_NE(problem.find("give"), problem.find("save")) << problem;  // each names the way out
  }
}

TEST(Check, WarnsOfWhatWouldSurpriseInAMessageFile) {
  HostFolder folder;
  const auto warnings = [&](const std::string& bytes) {
    folder.Write("a.ini", "[Messages]\r\n" + bytes + "\r\n");
    std::vector<std::string> found;
    CheckedFile file(folder.Path() + "\\a.ini", found);
    CheckMessages(file);
    return found;
  };
  const std::string options = "\r\n[Options]\r\nEnable=1\r\nInterval=30";
  EXPECT_TRUE(warnings("1={ShowNextMap}\r\n2=\r\n; x\r\n3=Gr\xFC\xDF\x65 (50%) :}\r\n"
                       "4=Show up, 8 pm :}\r\n5=Showtime " +
                       options)
                  .empty());
  for (const auto& [lines, says] :
       {std::pair<std::string, const char*>("1={shownextmap}" + options, "2: message 0 "),
        {"1={shownextmap}" + options, "write {ShowNextMap}"},
        {"1=Next: {ShowMostKills}" + options, "must be the whole message"},
        {"1={ShowMostAssists}" + options, "no placeholder's name"},
        {"1={ShowMostKilz" + options, "no placeholder's name"},
        {"1={ShowMostKills" + options, "write {ShowMostKills}"},
        {"1=ShowNextMap}" + options, "write {ShowNextMap}"},
        {"1=ShowNextMap" + options, "write {ShowNextMap}"},
        {"2=a" + options, "has the key 2 and not 1"},
        {"x=a" + options, "has the key x"},
        {"1=a\tb" + options, "cannot show"},
        {"1=a\x81" + options, "cannot show"},
        {"1=" + std::string(61, '1') + options, "61 characters"},
        {"1=\xC3\xBC" + options, "2: it is a UTF-8 file: for \"ü\" players read \"Ã¼\"; \"check "},
        {"1=a\r\n[x]=b" + options, "3: the line is taken for the heading of a section \"x\""},
        {"1=a\r\nb" + options, "3: the line is ignored, for it has no \"=\""},
        {"1=a" + options + "\r\n[messages]\r\n2=b", "6: the section [messages] stands here again"},
        {"1=a" + options + "\r\nenable=0", "6: enable stands here again"},
        {options, "1: there are no messages"},
        {"1=a\r\n[Options]\r\nInterval=3", "3: Enable is missing: the profile is switched off"},
        {"1=a\r\n[Options]\r\nEnable=1", "3: Interval is missing: a message goes out every 3 min"},
        {"1=a\r\n[Options]\r\nEnable=2\r\nInterval=3", "4: Enable is \"2\", outside 0 to 1"},
        {"1=a\r\n[Options]\r\nEnable=1\r\nInterval=31", "5: Interval is \"31\", outside 0 to 30"},
        {"1=a\r\n[Options]\r\nEnable=1\r\nInterval=abc", "no number"}}) {
    const auto found = warnings(lines);
    ASSERT_EQ(found.size(), 1U) << lines;
    EXPECT_TRUE(found[0].starts_with(folder.File("a.ini:"))) << found[0];
    EXPECT_NE(found[0].find(says), std::string::npos) << found[0];
  }
}

TEST(Check, WarnsOfWhatWouldSurpriseInAFolder) {
  HostFolder folder;
  const auto warned = [&](const std::string& place, const std::string& says) {
    for (const std::string& warning : CheckHostFolder(folder.Path()).warnings) {
      if (warning.starts_with(folder.File(place) + ": ") && warning.find(says) != warning.npos) {
        return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(warned("profiles", "make it a folder"));
  folder.Write("profiles/old/profile.ini/x", "");
  folder.Write("profiles/big/PROFILE.INI", "");
  folder.Write("profiles/none/readme.txt", "");
  folder.Write("settings/config.ini", "[Settings]\r\nReportErrors=x\r\n");
  const std::string file = "[Messages]\r\n1=a\r\n[Options]\r\nEnable=1\r\nInterval=3\r\n";
  folder.AddProfile(1, "JO", "0999999999", "4777\r\nTraget=1", file);
  folder.AddProfile(2, "JO", "0999999999", "4777", file);
  folder.AddProfile(3, "JO", "one", "1\r\nSay=x");
  folder.AddProfile(4, "JO", "one", "", "\xEF\xBB\xBF[Messages]\r\n1=\xC5\x81");
  folder.AddProfile(5, "JO", "one", "x");
  folder.Write("profiles/srv3/settings/rotacasts.ini", "");
  const auto srv = [](int index, const char* rest) {
    return "profiles/srv" + std::to_string(index) + "/" + rest;
  };
  for (const auto& [place, says] : std::vector<std::pair<std::string, const char*>>{
           {"profiles/old/profile.ini", "is no file"},
           {"profiles/big/PROFILE.INI", "rename it to profile.ini"},
           {"profiles/none", "has no profile.ini"},
           {"settings/config.ini:2", "ReportErrors is \"x\"; write 0, or 1"},
           {srv(1, "profile.ini:6"), "\"Traget\" is ignored"},
           {srv(2, "profile.ini:5"), "Target 4777 is also that of profile 1 (srv1)"},
           {srv(1, "profile.ini:4"), "the game server has ended"},
           {srv(1, "profile.ini:5"), "nobody receives at the port 4777"},
           {srv(3, "settings/rotacasts.ini"), "rename it to Rotacasts.ini"},
           {srv(4, "profile.ini:5"), "Target is missing"},
           {srv(5, "profile.ini:5"), "Target is \"x\""}}) {
    EXPECT_TRUE(warned(place, says)) << place << " " << says;
  }
  folder.AddProfile(2, "JO", "0999999999", "4778", file);
  EXPECT_TRUE(warned(srv(2, "profile.ini:4"), "Process 0999999999 is also that of profile 1"));
  folder.AddProfile(4, "JO", "one", "4779", "\xEF\xBB\xBF[Messages]\r\n1=\xC5\x81");
  EXPECT_TRUE(warned(srv(4, "settings/Rotacasts.ini:1"), "is a UTF-8 file, which"));
  EXPECT_FALSE(warned(srv(4, "profile.ini:4"), "is also that of"));
}

TEST(Check, ConvertsUtf8FilesAndKeepsThemAsTheyWere) {
  HostFolder folder;
  const std::string name = "profiles/srv1/settings/Rotacasts.ini";
  folder.AddProfile(1, "JO", "1", "4001", "[Messages]\n1=Gr\xFC\xDF\x65\n");
  EXPECT_TRUE(ConvertHostFolder(folder.Path()).empty());
  for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
    const std::string bytes = mark + "[Messages]\n1=Grüße €\n";
    folder.Write(name, bytes);
    const std::string copy = name + ".utf-8" + (mark.empty() ? "" : ".2");
    EXPECT_EQ(ConvertHostFolder(folder.Path()),
              std::vector{folder.File(name) + ": converted; as it was it is kept in " +
                          folder.File(copy)});
    EXPECT_EQ(folder.Read(name), "[Messages]\n1=Gr\xFC\xDF\x65 \x80\n");
    EXPECT_EQ(folder.Read(copy), bytes);
  }
  folder.Write(name, "1=Łódź");
  EXPECT_NE(ConvertHostFolder(folder.Path()).at(0).find("not converted: "), std::string::npos);
  EXPECT_EQ(folder.Read(name), "1=Łódź");
}

}  // namespace
}  // namespace rotacasts::host
