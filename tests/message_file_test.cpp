// The message file and the operations on it.

#include "store/message_file.h"

#include <algorithm>
#include <functional>
#include <tuple>

#include "base/text.h"
#include "store/insertion.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

class MessageFileTest : public PluginTest {
 protected:
  MessageFileTest() { Load(1); }
  MessageFile Open() { return State().store.Open(1); }
  void LoadMessages() { State().window.Showing(1)->LoadMessages(); }
  /// The lines of the section "Messages".
  std::string Section() { return LinesOf(host::IniText(host.MessageFile(1)), "Messages"); }
  void SetSection(const std::string& lines) {
    host.MessageFile(1) = "[Messages]\r\n" + lines + "[Options]\r\nEnable=1\r\n";
  }
};

TEST_F(MessageFileTest, LoadListsPositiveKeysAndTheFirstSixtyCharacters) {
  std::string longText(80, 'x');
  longText.replace(0, 1, "ü");
  SetSection("1=a\r\n0=hidden\r\n-3=hidden\r\n7=\r\n9=   \r\n2=score=kills\r\n3=" +
             ToWindows1252(longText) + "\r\n");
  LoadMessages();
  EXPECT_EQ(Rows(), (Texts{"a", "", "   ", "score=kills", "ü" + std::string(59, 'x')}));
  EXPECT_EQ(Window().lstMessages().At(1).data, 7);
  EXPECT_TRUE(Window().lstMessages().IsVisible());
}

TEST_F(MessageFileTest, LoadClearsTheListWhenThereIsNothingToList) {
  for (const bool missing : {false, true}) {
    SetSection("1=a\r\n");
    LoadMessages();
    SetSection("");
    if (missing) host.files.erase(PathOf(1));
    host.calls.clear();
    LoadMessages();
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(host.calls.empty(), missing);
  }
}

TEST_F(MessageFileTest, LoadEndsAtALineItCannotReadAndShowsTheListAgain) {
  SetSection("1=a\r\nx=b\r\n3=c\r\n");
  LoadMessages();
  SetSection("1=a\r\n2=unsplittable\r\n");
  LoadMessages();
  EXPECT_EQ(Rows(), Texts{"a"});
  EXPECT_TRUE(Window().lstMessages().IsVisible());
  EXPECT_EQ(host.logged, (Texts{"LoadMessages: 13 Type mismatch",
                                "LoadMessages: 13 Type mismatch [2=unsplittable]"}));
  EXPECT_NE(host.boxes[0].find("Error Line: 6"), std::string::npos);
}

TEST_F(MessageFileTest, AddTakesAKeyThatOverwritesNothing) {
  for (const auto& [before, after] : {std::pair("", "1=new;"),
                                      {"1=a\r\n2=b\r\n", "1=a;2=b;3=new;"},
                                      {"2=a\r\n3=b\r\n", "2=a;3=b;4=new;"},
                                      {"7=a\r\n1=b\r\n", "7=a;1=b;8=new;"},
                                      {"2147483647=a\r\n2=b\r\n", "2147483647=a;2=b;3=new;"},
                                      {"-9=a\r\nx=b\r\n", "-9=a;x=b;3=new;"}}) {
    SetSection(before);
    EXPECT_TRUE(Open().AddEntry("new"));
    EXPECT_EQ(Section(), after);
  }
  for (const char* text : {"two\r\nlines", "two\nlines", "two\rlines", "Łódź"}) {
    EXPECT_FALSE(Open().AddEntry(text)) << text;
  }
  EXPECT_FALSE(State().store.AddEntry(99, "no such profile"));
  EXPECT_EQ(Section(), "-9=a;x=b;3=new;");
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(MessageFileTest, DeleteRenumbersAndLosesNoOtherText) {
  using Row = std::tuple<const char*, const char*, const char*>;
  for (const auto& [before, key, after] :
       {Row{"1=a\r\n2=b\r\n3=c\r\n", "9", "1=a;2=b;3=c;"},
        Row{"1=a\r\n2=\r\n3=   \r\n4= d \r\n", "1", "1= d ;"},
        Row{"0=x\r\n1=a\r\n2=b\r\n", "2", "1=x;2=a;"},
        Row{"x=a\r\n=b\r\n1.5=c\r\n01=d\r\n1=e\r\n5=f\r\n", "5", "1=a;2=b;3=c;4=d;5=e;"},
        Row{"2147483647=a\r\n1=b\r\n2=c\r\n", "1", "1=a;2=c;"},
        Row{"1=a\r\n1=b\r\n2=c\r\n", "2", "1=a;2=b;"}, Row{"1=a\r\n2=b\r\n1=\r\n", "2", "1=a;"},
        Row{"", "1", ""}}) {
    SetSection(before);
    EXPECT_TRUE(Open().DeleteEntry(key));
    EXPECT_EQ(Section(), after) << before;
  }

  SetSection("1=a\r\n2=b\r\n");
  host.calls.clear();
  Open().DeleteEntry("1");
  EXPECT_NE(host.MessageFile(1).find("Enable=1"), std::string::npos);
  const std::string end = ", " + PathOf(1) + ")";  // the keys that it removes are numbers
  EXPECT_EQ(host.calls,
            (Texts{"WriteIniKey(Messages, 1, null" + end, "GetIniSection(Messages" + end,
                   "ParseIniKey(2=b, true)", "WriteIniKey(Messages, 1, b" + end,
                   "WriteIniKey(Messages, #2, null" + end}));
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(MessageFileTest, NoChangeLosesATextWhicheverCallsFail) {
  const auto arrange = [](const Texts& texts) {
    return [texts](MessageFile file) { file.ReplaceEntries([&](const auto&) { return texts; }); };
  };
  const auto exchange = [](MessageFile file) { file.ExchangeEntries("2", "3"); };
  const auto renumber = [](MessageFile file) { file.DeleteEntry("9"); };
  const auto insert = [](MessageFile file) {
    Execute(file, StepsToInsert(file.Entries(), 1, {"x", "y"}));
  };
  struct Row {
    const char* before;
    std::function<void(MessageFile)> change;
    const char* after;
    bool isPutBack = true;  // when one call fails
  };
  const char* three = "1=a\r\n2=\r\n3=c\r\n";
  const char* four = "1=a\r\n2=b\r\n3=a\r\n4=c\r\n";
  const char* strange = "5=a\r\n3=b\r\nx=c\r\n";
  for (const auto& [before, change, after, isPutBack] :
       {Row{three, arrange({"c", "", "a"}), "1=c;2=;3=a;"},
        Row{four, arrange({"a", "a", "c", "b"}), "1=a;2=a;3=c;4=b;"},
        Row{four, arrange({"c", "a", "b", "a"}), "1=c;2=a;3=b;4=a;"},
        Row{strange, arrange({"c", "b", "a"}), "1=c;2=b;3=a;", false},
        Row{"1=a\r\n2=b\r\n3=c\r\n5=d\r\n", exchange, "1=a;2=c;3=b;5=d;"},
        Row{three, insert, "1=a;2=x;3=y;4=;5=c;"}, Row{"", insert, "1=x;2=y;"},
        Row{strange, insert, "1=a;2=x;3=y;4=b;5=c;", false},
        Row{"2=a\r\n4=\r\n6=c\r\n", renumber, "1=a;2=c;", false},
        Row{"6=a\r\n4=b\r\n1=c\r\n", renumber, "1=a;2=b;3=c;", false}}) {
    SetSection(before);
    const std::string intact = Section();
    Texts wanted = Stored(1);
    std::erase(wanted, "");  // renumbering drops it
    const auto expectAll = [&] {
      const Texts there = Stored(1);
      for (const std::string& text : wanted) {
        EXPECT_GE(std::ranges::count(there, text), std::ranges::count(wanted, text)) << Section();
      }
    };
    bool hasFailed = true;
    for (int first = 1; hasFailed; ++first) {
      for (int second = first; second < first + 9; ++second) {  // as putting back can fail, too
        SetSection(before);
        int calls = 0;
        int failures = 0;
        host.insideCall = [&] {
          expectAll();
          if (++calls != first && calls != second) return;
          ++failures;
          throw RuntimeError(ErrorNumber::DeviceIoError);
        };
        ErrorOf([&, &act = change] { act(Open()); });
        host.insideCall = nullptr;
        expectAll();
        hasFailed = failures > 0;
        if (failures == 1 && isPutBack) {
          EXPECT_EQ(Section(), intact) << first;
        }
      }
    }
    EXPECT_EQ(Section(), after) << before;
  }
}

}  // namespace
}  // namespace rotacasts
