// The message file and the operations on it.

#include "store/message_file.h"

#include <algorithm>

#include "host/ini_text.h"
#include "platform/text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

using testing::MessageFileBytes;
using testing::PathOf;
using testing::PluginTest;

class MessageFileTest : public PluginTest {
 protected:
  MessageFileTest() { State().profiles.SetProfileData(1, Data(1, "JO")); }
  MessageFile& Store() { return State().store; }
  /// The section "Messages" of the file, a line after the other.
  std::string Section() {
    std::string lines;
    const host::IniText ini(host.MessageFile(1));
    for (const auto& line : ini.Lines("Messages")) {
      lines += std::string(line.key) + "=" + std::string(line.value) + ";";
    }
    return lines;
  }
  void SetSection(const std::string& lines) {
    host.MessageFile(1) = "[Messages]\r\n" + lines + "[Options]\r\nEnable=1\r\n";
  }
};

TEST_F(MessageFileTest, LoadListsPositiveKeysAndTheFirstSixtyCharacters) {
  std::string longText(80, 'x');
  longText.replace(0, 1, "ü");
  SetSection("1=a\r\n0=hidden\r\n-3=hidden\r\n7=\r\n9=   \r\n2=score=kills\r\n3=" +
             ToWindows1252(longText) + "\r\n");
  Store().LoadMessages(1);
  EXPECT_EQ(Rows(),
            (std::vector<std::string>{"a", "", "   ", "score=kills", "ü" + std::string(59, 'x')}));
  EXPECT_EQ(Window().lstMessages().At(1).data, 7);
  EXPECT_TRUE(Window().lstMessages().IsVisible());
}

TEST_F(MessageFileTest, LoadClearsTheListWhenThereIsNothingToList) {
  SetSection("1=a\r\n");
  Store().LoadMessages(1);
  SetSection("");
  Store().LoadMessages(1);
  EXPECT_TRUE(Rows().empty());
  SetSection("1=a\r\n");
  Store().LoadMessages(1);
  host.files.erase(PathOf(1));
  host.calls.clear();
  Store().LoadMessages(1);
  EXPECT_TRUE(Rows().empty());
  EXPECT_TRUE(host.calls.empty());
}

TEST_F(MessageFileTest, LoadEndsAtALineItCannotReadAndShowsTheListAgain) {
  SetSection("1=a\r\nx=b\r\n3=c\r\n");
  Store().LoadMessages(1);
  SetSection("1=a\r\n2=unsplittable\r\n");
  Store().LoadMessages(1);
  EXPECT_EQ(Rows(), std::vector<std::string>{"a"});
  EXPECT_TRUE(Window().lstMessages().IsVisible());
  EXPECT_EQ(host.logged,
            (std::vector<std::string>{"LoadMessages: 13 Type mismatch",
                                      "LoadMessages: 13 Type mismatch [2=unsplittable]"}));
  EXPECT_NE(host.boxes[0].find("Error Line: 6"), std::string::npos);
  Store().LoadMessages(99);
  EXPECT_EQ(host.logged.back(), "LoadMessages: 9 Subscript out of range");
}

TEST_F(MessageFileTest, AddTakesAKeyThatOverwritesNothing) {
  struct Row {
    const char* before;
    const char* after;
  };
  for (const Row& row : std::initializer_list<Row>{{"", "1=new;"},
                                                   {"1=a\r\n2=b\r\n", "1=a;2=b;3=new;"},
                                                   {"2=a\r\n3=b\r\n", "2=a;3=b;4=new;"},
                                                   {"7=a\r\n1=b\r\n", "7=a;1=b;8=new;"},
                                                   {"-9=a\r\nx=b\r\n", "-9=a;x=b;3=new;"}}) {
    SetSection(row.before);
    EXPECT_TRUE(Store().AddEntry(1, "new"));
    EXPECT_EQ(Section(), row.after);
  }
  SetSection("2147483647=a\r\n");
  EXPECT_FALSE(Store().AddEntry(1, "new"));
  EXPECT_EQ(Section(), "2147483647=a;");
}

TEST_F(MessageFileTest, AddStoresTheTextWholeOrSaysSo) {
  for (const std::string& text : {std::string(" lead and trail "), std::string("a=b"),
                                  std::string(80, 'y'), std::string("Grüße €"), std::string()}) {
    SetSection("1=a\r\n");
    EXPECT_TRUE(Store().AddEntry(1, text)) << text;
    EXPECT_EQ(Section(), "1=a;2=" + ToWindows1252(text) + ";");
  }
  const std::string before = host.MessageFile(1);
  for (const char* text : {"two\r\nlines", "two\nlines", "two\rlines", "Łódź"}) {
    EXPECT_FALSE(Store().AddEntry(1, text)) << text;
  }
  EXPECT_FALSE(Store().AddEntry(99, "no such profile"));
  EXPECT_EQ(host.MessageFile(1), before);
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(MessageFileTest, DeleteRenumbersAndLosesNoOtherText) {
  struct Row {
    const char* before;
    const char* key;
    const char* after;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"1=a\r\n2=b\r\n3=c\r\n", "2", "1=a;2=c;"},
           {"1=a\r\n2=b\r\n3=c\r\n", "9", "1=a;2=b;3=c;"},
           {"1=a\r\n2=\r\n3=   \r\n4= d \r\n", "1", "1= d ;"},
           {"0=x\r\n1=a\r\n2=b\r\n", "2", "1=x;2=a;"},
           {"x=a\r\n=b\r\n1.5=c\r\n01=d\r\n1=e\r\n5=f\r\n", "5", "1=a;2=b;3=c;4=d;5=e;"},
           {"1=a\r\n1=b\r\n2=c\r\n", "2", "1=a;2=b;"},
           {"", "1", ""}}) {
    SetSection(row.before);
    EXPECT_TRUE(Store().DeleteEntry(1, row.key));
    EXPECT_EQ(Section(), row.after) << row.before;
  }
  EXPECT_NE(host.MessageFile(1).find("Enable=1"), std::string::npos);
  EXPECT_FALSE(Store().DeleteEntry(99, "1"));
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(MessageFileTest, RenumberingPassesNumbersForTheKeysItRemoves) {
  SetSection("1=a\r\n2=b\r\n");
  host.calls.clear();
  Store().DeleteEntry(1, "1");
  const std::string end = ", " + PathOf(1) + ")";
  EXPECT_EQ(host.calls, (std::vector<std::string>{
                            "WriteIniKey(Messages, 1, null" + end, "GetIniSection(Messages" + end,
                            "ParseIniKey(2=b, True)", "WriteIniKey(Messages, 1, b" + end,
                            "WriteIniKey(Messages, #2, null" + end}));
}

TEST_F(MessageFileTest, AnErrorOfTheRenumberingIsReportedThere) {
  SetSection("1=a\r\n2=b\r\n");
  host.failAtCall = 2;
  EXPECT_TRUE(Store().DeleteEntry(1, "1"));
  EXPECT_TRUE(host.fired);
  ASSERT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(host.logged[0].find("RewriteEntries: 57"), 0U);
  host.failAtCall = 1;
  EXPECT_FALSE(Store().DeleteEntry(1, "1"));
  EXPECT_EQ(host.logged.size(), 1U);
}

TEST_F(MessageFileTest, ExchangeLeavesTheLinesInTheirPlaces) {
  SetSection("1=a\r\n2=b\r\n3=c\r\n");
  const MessageFile::Exchanged texts = Store().ExchangeEntries(1, "2", "3");
  EXPECT_EQ(texts.first + texts.second, "bc");
  EXPECT_EQ(Section(), "1=a;2=c;3=b;");
}

TEST_F(MessageFileTest, ReplaceKeepsEveryTextInTheFileAtEveryMoment) {
  struct Row {
    const char* before;
    std::vector<std::string> texts;
    const char* after;
    bool putsBack;  // after a failure the section is what it was
  };
  for (const Row& row : std::initializer_list<Row>{
           {"1=a\r\n2=b\r\n3=c\r\n", {"b", "a", "c"}, "1=b;2=a;3=c;", true},
           {"1=a\r\n2=\r\n3=c\r\n", {"c", "", "a"}, "1=c;2=;3=a;", true},
           {"5=a\r\n3=b\r\nx=c\r\n", {"c", "b", "a"}, "1=c;2=b;3=a;", false}}) {
    const auto holdsAll = [&] {
      return std::all_of(row.texts.begin(), row.texts.end(), [&](const std::string& text) {
        return host.MessageFile(1).find("=" + text + "\r") != std::string::npos;
      });
    };
    for (int call = 1;; ++call) {
      SetSection(row.before);
      host.failAtCall = call;
      host.fired = false;
      host.insideCall = [&] { EXPECT_TRUE(holdsAll()) << host.MessageFile(1); };
      const int error = testing::ErrorOf(
          [&] { Store().ReplaceEntries(1, [&](const auto&) { return row.texts; }); });
      host.failAtCall = 0;
      EXPECT_EQ(error, host.fired ? 57 : 0);
      EXPECT_TRUE(holdsAll()) << call;
      if (!host.fired) break;
      if (row.putsBack) {
        EXPECT_EQ(Section(), ReplaceAll(row.before, "\r\n", ";")) << call;
      }
    }
    host.insideCall = nullptr;
    EXPECT_EQ(Section(), row.after);
  }
}

TEST_F(MessageFileTest, OptionsHoldNoLineBreak) {
  Store().SetOption(1, kIntervalKey, "5");
  EXPECT_EQ(Store().ReadOption(1, kIntervalKey), "5");
  EXPECT_EQ(testing::ErrorOf([&] { Store().SetOption(1, kIntervalKey, "5\r\n[Messages]"); }), 5);
  EXPECT_EQ(Store().ReadOption(1, kIntervalKey), "5");
}

}  // namespace
}  // namespace rotacasts
