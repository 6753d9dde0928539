// The stand-alone host's files on every platform: INI files, logs, reports, and their failures.

#include "support/host_files.h"
#include "machine/base64.h"
#include "siblings/error_log.h"
#include "siblings/host_file_system.h"

namespace rotacasts::host {
namespace {

TEST_F(HostFilesTest, IniKeysAreWrittenAsWindows1252AndReadBack) {
  Set("S", "Key", " Grüße € = 1 ");
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\nKey= Gr\xFC\xDF\x65 \x80 = 1 \r\n");
  EXPECT_EQ(utility.GetIniKey("s", "KEY", file), " Grüße € = 1 ");
  Set("S", 7, "seven");
  EXPECT_EQ(utility.GetIniSection("S", file), (Texts{"Key= Grüße € = 1 ", "7=seven", ""}));
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
  for (const std::string& bad : {std::string("a\r\nb"), {"a\n"}, nul, {"Ł"}, {"\xFF"}}) {
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
    const RuntimeError error = ThrownBy([&] { Set("S", "1", "x"); });
    EXPECT_EQ(error.number, 321) << says;
    EXPECT_NE(error.description.find(folder.File("a.ini")), std::string::npos);
    EXPECT_NE(error.description.find(says), std::string::npos) << error.description;
    EXPECT_EQ(folder.Read("a.ini"), bytes);
  }
  folder.Write("a.ini", "[S]\r\n1=a\r\n");
  std::filesystem::permissions(folder.File("a.ini"), std::filesystem::perms::owner_read);
  EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 70);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=a\r\n");
  Set("S", "1", "a");  // no change, so no error
  std::filesystem::permissions(folder.File("a.ini"), std::filesystem::perms::owner_all);
  file = folder.Path() + "\\none\\a.ini";
  EXPECT_EQ(ErrorOf([&] { Set("S", "1", "x"); }), 76);
  file = folder.Path();
  EXPECT_NE(ErrorOf([&] { Set("S", "1", "x"); }), 0);
}

TEST_F(HostFilesTest, AnOperationIsOneChangeUntilItIsSettledOrAnotherBeginsWithinIt) {
  folder.Write("log", "begun");
  for (const std::function<void()>& end :
       std::vector<std::function<void()>>{[&] { ini.Settle(); }, [&] { ini.Run([] {}); }}) {
    folder.Write("a.ini", "[S]\r\n");
    EXPECT_EQ(ini.Run([&] {
      Set("S", "1", "x");
      Set("S", "2", "y");
      EXPECT_EQ(utility.GetIniKey("S", "1", file), "x");
      EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n");
      utility.AppendFile(log, "told");
      Set("S", "3", "z");
      EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=x\r\n2=y\r\n");
      end();
      EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=x\r\n2=y\r\n3=z\r\n");
      folder.Write("a.ini", "[S]\r\n1=hand\r\n");
      EXPECT_EQ(utility.GetIniKey("S", "1", file), "hand");
      Set("S", "4", "d");
      EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n1=hand\r\n4=d\r\n");
    }),
              std::nullopt);
  }
  EXPECT_EQ(folder.Read("log"), "begun\r\ntold\r\ntold\r\n");
}

TEST_F(HostFilesTest, AnOperationIsDoneAnewOnWhatAnotherProgramHasSaved) {
  folder.Write("log", "");
  for (const auto& [how, saved] : {std::pair("renamed", "[S]\r\n1=c\r\n"),
                                   {"in place", "[S]\r\n1=d\r\n"},
                                   {"gone", "[S]\r\n"}}) {
    folder.Write("a.ini", "[S]\r\n1=a\r\n");
    int runs = 0;
    EXPECT_EQ(ini.Run([&] {
      Set("S", "2", "b");
      if (++runs == 1) {
        folder.Write(*how == 'i' ? "a.ini" : "b.ini", saved);
        if (*how == 'g') std::filesystem::remove(folder.File("a.ini"));
        if (*how == 'r') std::filesystem::rename(folder.File("b.ini"), folder.File("a.ini"));
      }
      ini.Run([&] { utility.AppendFile(log, how); });  // once, too
    }),
              std::nullopt);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(folder.Read("a.ini"), saved + std::string("2=b\r\n"));
  }
  EXPECT_EQ(folder.Read("log"), "renamed\r\nin place\r\ngone\r\n");
  const std::ofstream writer(folder.File("a.ini"), std::ios::app);  // stays open
  EXPECT_EQ(ErrorOf([&] { Set("S", "2", "x"); }), 70);
  EXPECT_EQ(folder.Read("a.ini"), "[S]\r\n2=b\r\n");
}

TEST_F(HostFilesTest, AnOperationKnowsWhatCannotBeStoredAndEndsWhereItCannot) {
  folder.Write("a.ini", "[S]\r\n1=a\r\n");
  folder.Write("log", "");
  std::filesystem::permissions(folder.File("a.ini"), std::filesystem::perms::owner_read);
  const auto set = [&] { Set("S", "1", "x"); };
  const auto read = [&] { return utility.GetIniKey("S", "1", file); };
  const auto tell = [&] { utility.AppendFile(log, "told"); };
  const auto refuse = [](const auto& act) { EXPECT_EQ(ErrorOf(act), 70); };
  const auto report = [&] {
    std::string procedure = "P";
    RuntimeError error(13, "");
    std::int32_t line = 0;
    utility.LogError("M", procedure, error, line);
    refuse(set);
    EXPECT_EQ(read(), "a");
    refuse(tell);
  };
  using Row = std::tuple<const char*, std::function<void()>, int>;
  for (const auto& [name, operation, number] :
       {Row{"asks and goes on", [&] { set(), refuse(read), tell(); }, 0},
        Row{"asks and fails", [&] { set(), refuse(read), report(); }, 70},
        Row{"tells", [&] { set(), refuse(tell), report(); }, 70},
        Row{"reports", [&] { set(), report(); }, 70}, Row{"ends", set, 70}}) {
    const auto failure = ini.Run(operation);
    EXPECT_EQ(failure ? failure->number : 0, number) << name;
  }
  std::filesystem::permissions(folder.File("a.ini"), std::filesystem::perms::owner_all);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("log"), "[S]\r\n1=a\r\ntold\r\n");
}

TEST_F(HostFilesTest, ErrorsAreLoggedALineEachAndReportsAFileEach) {
  std::string procedure = "tmrRT";
  RuntimeError error(13, "Type\r\nmismatch ü");
  std::int32_t line = 4;
  for (int i = 0; i < 2; ++i) utility.LogError("tvxRT.dll", procedure, error, line);
  const std::string entry =
      "2010-03-07 14:05:09 tvxRT.dll tmrRT line 4: error 13: Type  mismatch ü\r\n";
  EXPECT_EQ(folder.Read("logs/errors.log"), entry + entry);
  for (const char letter : {'a', 'b'}) {
    folder.Write("logs/errors.log", std::string(kLongestErrorLog, letter));
    utility.LogError("tvxRT.dll", procedure, error, line);
    EXPECT_EQ(folder.Read("logs/errors.log"), entry);
    EXPECT_EQ(folder.Read("logs/errors.old.log"), std::string(kLongestErrorLog, letter));
  }
  HostValue report(
      HostValue::Array{"13", "Type mismatch", "tvxRT.dll 1.0.0", "tmrRT", HostValue(), 4});
  EXPECT_TRUE(utility.SendErrorReport(report) && utility.SendErrorReport(report));
  EXPECT_EQ(folder.Read("reports/2010-03-07 14-05-09 2.txt"),
            "Date: 2010-03-07 14:05:09\r\nError number: 13\r\nDescription: Type mismatch\r\n"
            "Module: tvxRT.dll 1.0.0\r\nProcedure: tmrRT\r\nAffiliate: \r\nLine: 4\r\n");
  std::filesystem::remove_all(folder.File("reports"));
  folder.Write("reports", "a file in the way");
  EXPECT_FALSE(utility.SendErrorReport(report));
}

TEST_F(HostFilesTest, TextFilesAreReadAndAppendedByTheLine) {
  HostFileSystem files(ini);
  const std::string made = folder.Path() + "\\new";
  std::string text = made + "\\a.txt";
  EXPECT_EQ(ErrorOf([&] { files.CreateTextFile(text); }), 76);
  EXPECT_EQ(ErrorOf([&] { files.CreateFolder(made + "\\y"); }), 76);
  files.CreateFolder(made);
  EXPECT_EQ(ErrorOf([&] { files.CreateFolder(made); }), 58);
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(text, "x"); }), 53);
  files.CreateTextFile(text);
  utility.AppendFile(text, "Grüße");
  EXPECT_EQ(ErrorOf([&] { utility.AppendFile(text, "two\nlines"); }), 5);
  utility.AppendFile(text, "");
  EXPECT_EQ(folder.Read("new/a.txt"), "Gr\xFC\xDF\x65\r\n\r\n");
  EXPECT_EQ(utility.ReadFile(text), (Texts{"Grüße", ""}));
  EXPECT_TRUE(files.FileExists(text) && files.FolderExists(made));
  EXPECT_FALSE(files.FileExists(made) || files.FolderExists(text));
}

TEST(Base64, DecodesItsOwnAndRefusesTheRest) {
  const std::string any("\0\xFF|", 3);
  for (const std::string& text : {std::string(), {"a"}, {"ab"}, {"Grüße"}, any}) {
    EXPECT_EQ(DecodeBase64(EncodeBase64(text)), text);
  }
  EXPECT_EQ(EncodeBase64(std::string(100, '\xFF')).find_first_of("|\r\n"), std::string::npos);
  for (const char* bad : {"A", "QQ", "QQ=", "QQ===", "Q=Q=", "QQ==\n", " QQ==", "Q!==", "===="}) {
    EXPECT_EQ(ErrorOf([&] { DecodeBase64(bad); }), 5) << bad;
  }
}

}  // namespace
}  // namespace rotacasts::host
