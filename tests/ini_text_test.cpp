// The INI text: what a change touches and what it leaves alone.

#include "siblings/ini_text.h"

#include <random>

#include "support/fake_host.h"

namespace rotacasts::host {
namespace {

TEST(IniText, ReadsSectionsOfAllKindsOfFiles) {
  for (const auto& [bytes, lines] :
       {std::pair("[S]\r\n1=a\r\n2=b=c\r\n", "1=a;2=b=c;"),
        {"[S]\n1=a\n\n2=b", "1=a;2=b;"},
        {"[S]\r1=a\r2=b\r", "1=a;2=b;"},
        {"[s]\r\n 1 = a \r\n", "1= a ;"},
        {"x=0\r\n[T]\r\n1=t\r\n  [ S ]  ; note\r\n1=a\r\n[T]\r\n2=t\r\n[S]\r\n9=second\r\n",
         "1=a;"},
        {"[S]\r\n;1=no\r\n # 2=no\r\nno equals\r\n=empty key\r\n3=\r\n", "=empty key;3=;"},
        {"[S]\r\n1=a\r\n[half", "1=a;"},
        {"[S", ""},
        {"", ""}}) {
    EXPECT_EQ(LinesOf(IniText(bytes), "S"), lines) << bytes;
  }
  EXPECT_EQ(IniText("[S]\r\nKey=1\r\nkey=2\r\n").Value("s", "KEY"), "1");
  EXPECT_EQ(IniText("[S]\r\n[T]\r\nk=1\r\n").Value("S", "k"), std::nullopt);
}

TEST(IniText, ChangesOneLineAndNoOther) {
  using Row = std::tuple<const char*, void (*)(IniText&), const char*>;
  const auto set = [](IniText& ini) { ini.SetValue("S", "2", " x"); };
  const auto removeKey = [](IniText& ini) { ini.RemoveKey("S", "2"); };
  const auto removeSection = [](IniText& ini) { ini.RemoveSection("S"); };
  for (const auto& [before, change, after] : std::initializer_list<Row>{
           {"", set, "[S]\r\n2= x\r\n"},
           {"; note", set, "; note\r\n[S]\r\n2= x\r\n"},
           {"[S]\n1=a\n\n\n[T]\n2=t\n", set, "[S]\n1=a\n2= x\r\n\n\n[T]\n2=t\n"},
           {"[S]\r\n1=a", set, "[S]\r\n1=a\r\n2= x\r\n"},
           {"[S]", set, "[S]\r\n2= x\r\n"},
           {"[S]\r\n 2 =old\r\n3=c\r\n", set, "[S]\r\n 2 = x\r\n3=c\r\n"},
           {"[S]\r\n2=a\r\n2=b\r\n;2=c\r\n", removeKey, "[S]\r\n2=b\r\n;2=c\r\n"},
           {"[S]\r\n1=a\r\n2=b", removeKey, "[S]\r\n1=a\r\n"},
           {"[S]\r\n2= x\r\n", set, "[S]\r\n2= x\r\n"},
           {"[T]\r\n2=t\r\n", removeKey, "[T]\r\n2=t\r\n"},
           {"a=b\r\n[S]\r\n1=a\r\n\r\n[T]\r\n2=t", removeSection, "a=b\r\n[T]\r\n2=t"},
           {"[T]\r\n[S]\r\n1=a", removeSection, "[T]\r\n"}}) {
    for (const bool again : {false, true}) {  // a section that is changed again is indexed by key
      IniText ini(before);
      if (again) ini.RemoveKey("s", "none");
      change(ini);
      EXPECT_EQ(ini.Bytes(), after) << before << again;
      EXPECT_EQ(ini.IsChanged(), std::string(before) != after);
    }
  }
}

TEST(IniText, ManyChangesComeToTheSameWhetherItsLinesAreKnownOrNot) {
  const char* const keys[] = {"1", "2", "a", "A", "b"};
  const char* const files[] = {"", "[S]", "[T]\nx=y\n[s]\n1=a\n\n2=b\n2=c\nA=d\n\n[T]\n1=t",
                               "[S]\r\n1=a\r\n;1=b\r\nb=1\r\nB=2\r\nb=3"};
  std::mt19937 random(1);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int life = 0; life < 400; ++life) {
    IniText known(files[below(std::size(files))]);
    std::string bytes = known.Bytes();
    for (int step = 0; step < 12; ++step) {
      const char* const key = keys[below(std::size(keys))];
      const std::string value = std::to_string(below(3));
      const bool isSet = below(2) == 0;
      IniText fresh(bytes);
      for (IniText* ini : {&known, &fresh}) {
        isSet ? ini->SetValue("S", key, value) : ini->RemoveKey("S", key);
      }
      ASSERT_EQ(known.Value("S", "B"), fresh.Value("S", "B"));
      ASSERT_EQ(LinesOf(known, "S"), LinesOf(fresh, "S")) << bytes;
      bytes = fresh.Bytes();
      if (below(4) == 0) {
        ASSERT_EQ(known.Bytes(), bytes);
      }
    }
    ASSERT_EQ(known.Bytes(), bytes);
  }
}

}  // namespace
}  // namespace rotacasts::host
