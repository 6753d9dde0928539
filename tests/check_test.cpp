// What an administrator learns about the files: profile.ini, message files, their conversion.

#include <gtest/gtest.h>

#include <algorithm>

#include "check/check.h"
#include "host/profile_settings.h"
#include "support/host_folder.h"

namespace rotacasts::host {
namespace {

TEST(ProfileSettings, NonsenseIsSkippedAndSaysWhatToDo) {
  TestFolder folder;
  folder.AddProfile(5, "JO", "1234", "4005");
  folder.AddProfile(2, "DFBHD", "server.exe", " 65535 ");
  folder.AddProfile(12, "DFX2_AFF2", "1", "1");
  int index = 8;
  for (const char* code : {"", "Joint-Ops!", "jo", "JO_AFF3"}) {
    folder.AddProfile(index++, code, "1", "1");
  }
  for (const int wrong : {0, 32768}) folder.AddProfile(wrong, "JO", "1", "1");
  folder.AddProfile(7, "JO", "1", "65536");
  for (const auto& [place, number] : {std::pair("twin", "5"), {"...", "6"}}) {
    folder.Write(std::string("profiles/") + place + "/profile.ini",
                 std::string("[Profile]\nGameCode=JO\nProcess=1\nTarget=1\nIndex=") + number);
  }
  folder.Write("profiles/half/profile.ini", "[Profile]\nIndex=1.5\n");
  folder.Write("profiles/utf/profile.ini", "\xEF\xBB\xBF[Profile]\n");
  folder.Write("profiles/empty/readme.txt", "no profile");
  const LoadedProfiles loaded = LoadProfiles(folder.Path());
  ASSERT_EQ(loaded.profiles.size(), 3U);
  EXPECT_EQ(loaded.profiles[0].Label(), "profile 2 (srv2)");
  EXPECT_EQ(loaded.profiles[0].target, 65535);
  EXPECT_EQ(loaded.profiles[1].process, "1234");
  EXPECT_EQ(loaded.profiles[2].gameCode, "DFX2_AFF2");
  ASSERT_EQ(loaded.problems.size(), 11U);
  EXPECT_TRUE(loaded.problems[3].words.starts_with(folder.File("profiles/srv10/profile.ini") +
                                                   ":3: GameCode is \"jo\"; give one of DFBHD, "));
  for (const auto& [profile, problem] : loaded.problems) {
    EXPECT_NE(problem.find("give"), problem.find("save")) << problem;  // each says what to do
  }
}

TEST(Check, WarnsOfWhatWouldSurpriseInAMessageFile) {
  TestFolder folder;
  const auto warnings = [&](const std::string& bytes) {
    folder.Write("a.ini", "[Messages]\r\n" + bytes + "\r\n");
    std::vector<std::string> found;
    FileCheck file(folder.Path() + "\\a.ini", found);
    CheckMessages(file);
    return found;
  };
  const std::string options = "\r\n[Options]\r\nEnable=1\r\nInterval=30";
  EXPECT_TRUE(warnings("1={ShowNextMap}\r\n2=\r\n; x\r\n3=Gr\xFC\xDF\x65 (50%) :}\r\n"
                       "4=Show up, 8 pm :}\r\n5=Showtime " +
                       options)
                  .empty());
  for (const auto& [lines, says] :
       {std::pair<std::string, const char*>("1={shownextmap}" + options,
                                            "2: message 1 \"{shownextmap}\" is in the wrong"),
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
        {"1=a\r\nb" + options, "3: the line is ignored because it has no \"=\""},
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
  TestFolder folder;
  const auto warned = [&](const std::string& place, const std::string& says) {
    const auto warnings = CheckHostFolder(folder.Path()).warnings;
    return std::ranges::any_of(warnings, [&](const std::string& warning) {
      return warning.starts_with(folder.File(place) + ": ") && warning.find(says) != warning.npos;
    });
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
  const std::string srv = "profiles/srv";
  for (const auto& [place, says] : std::vector<std::pair<std::string, const char*>>{
           {"profiles/old/profile.ini", "is no file"},
           {"profiles/big/PROFILE.INI", "rename it to profile.ini"},
           {"profiles/none", "has no profile.ini"},
           {"settings/config.ini:2", "ReportErrors is \"x\"; write 0, or 1"},
           {srv + "1/profile.ini:6", "\"Traget\" is ignored"},
           {srv + "2/profile.ini:5", "Target 4777 is also that of profile 1 (srv1)"},
           {srv + "1/profile.ini:4", "the game server has ended"},
           {srv + "1/profile.ini:5", "nobody receives at the port 4777"},
           {srv + "3/settings/rotacasts.ini", "rename it to Rotacasts.ini"},
           {srv + "4/profile.ini:5", "Target is missing"},
           {srv + "5/profile.ini:5", "Target is \"x\""}}) {
    EXPECT_TRUE(warned(place, says)) << place << " " << says;
  }
  folder.AddProfile(2, "JO", "0999999999", "4778", file);
  EXPECT_TRUE(warned(srv + "2/profile.ini:4", "Process 0999999999 is also that of profile 1"));
  folder.AddProfile(4, "JO", "one", "4779", "\xEF\xBB\xBF[Messages]\r\n1=\xC5\x81");
  EXPECT_TRUE(warned(srv + "4/settings/Rotacasts.ini:1", "is a UTF-8 file, which"));
  EXPECT_FALSE(warned(srv + "4/profile.ini:4", "is also that of"));
}

TEST(Check, ConvertsUtf8FilesAndKeepsThemAsTheyWere) {
  TestFolder folder;
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
  const std::string admins = "settings/admins.ini";
  folder.Write(admins, "\xEF\xBB\xBF[J\xC3\xBCrgen]\n");
  std::filesystem::permissions(folder.File(admins), std::filesystem::perms::owner_read |
                                                        std::filesystem::perms::owner_write);
  EXPECT_NE(CheckHostFolder(folder.Path()).warnings.at(0).find("is a UTF-8 file, which"),
            std::string::npos);
  EXPECT_EQ(ConvertHostFolder(folder.Path()).size(), 1U);
  EXPECT_EQ(folder.Read(admins), "[J\xFCrgen]\n");
  EXPECT_EQ(std::filesystem::status(folder.File(admins + ".utf-8")).permissions(),
            std::filesystem::status(folder.File(admins)).permissions());
  folder.Write(name, "1=Łódź");
  EXPECT_NE(ConvertHostFolder(folder.Path()).at(0).find("not converted: "), std::string::npos);
  EXPECT_EQ(folder.Read(name), "1=Łódź");
}

}  // namespace
}  // namespace rotacasts::host
