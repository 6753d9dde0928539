// Texts, values and their conversions.

#include <gtest/gtest.h>

#include "base/conversions.h"
#include "base/text.h"
#include "support/fake_host.h"

namespace rotacasts {
namespace {

TEST(Windows1252, EveryByteSurvivesTheWayThereAndBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    const std::string text = FromWindows1252(bytes);
    EXPECT_TRUE(IsValidUtf8(text)) << byte;
    EXPECT_EQ(ToWindows1252(text), bytes) << byte;
  }
  EXPECT_EQ(FromWindows1252("\x80 Gr\xFC\xDF"), "€ Grüß");
}

TEST(Windows1252, NamesTheCharacterThatItLacks) {
  for (const char* text : {"Łódź", "\xC3", "\xE2\x82", "a\xFFz", "\xED\xA0\x80", "\xC0\x80"}) {
    EXPECT_EQ(ErrorOf([&] { ToWindows1252(text); }), 5) << text;
  }
  const std::string why = ThrownBy([] { ToWindows1252("Łódź"); }).description;
  EXPECT_NE(why.find("Ł (U+0141)"), std::string::npos) << why;
}

TEST(Text, CountsAndCutsCharactersNotBytes) {
  const std::string text = "äö€😀x";
  EXPECT_EQ(CountCharacters(text), 5U);
  EXPECT_EQ(FirstCharacters(text, 3), "äö€");
  EXPECT_EQ(FirstCharacters(text, 4), "äö€😀");
  EXPECT_EQ(FirstCharacters(text, 99), text);
  EXPECT_EQ(TrimSpaces("  \ta b \t "), "\ta b \t");  // spaces only, no tabs
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(LowerCase("AZ@[Ä9z"), "az@[Ä9z");
}

TEST(Text, AWholeNumberIsDigitsAndNothingElse) {
  using Row = std::pair<const char*, std::optional<std::int32_t>>;
  for (const auto& [text, number] :
       {Row{"0", 0}, Row{"-7", -7}, Row{"007", 7}, Row{"2147483647", 2147483647},
        Row{"2147483648", {}}, Row{"", {}}, Row{"-", {}}, Row{"+7", {}}, Row{" 7", {}},
        Row{"7 ", {}}, Row{"7.0", {}}, Row{"0x7", {}}}) {
    EXPECT_EQ(WholeNumber(text), number) << text;
  }
}

TEST(Text, ControlCharactersAreReplacedAndNothingElseIs) {
  for (const auto& [text, shown] : std::vector<std::pair<std::string, std::string>>{
           {"Grüße €\u00A0\u00BF~", "Grüße €\u00A0\u00BF~"},
           {std::string("\0\x1F\x7F", 3), "???"},
           {"a\r\n\tb", "a???b"},
           {"\u0080\u0085x\u009F", "??x?"},
           {"\xC2\xC2\x9B-\xC2", "\xC2?-\xC2"}}) {
    EXPECT_EQ(ReplaceControls(text, '?'), shown);
    EXPECT_EQ(HasControl(text), shown != text) << shown;
  }
}

TEST(Conversions, TextsToWholeNumbers) {
  using Row = std::pair<const char*, int>;
  for (const auto& [text, value] :
       {Row{" 15 ", 15}, Row{"-7", -7}, Row{"+7", 7}, Row{"2.5", 2}, Row{"3.5", 4}, Row{"-2.5", -2},
        Row{"0.6", 1}, Row{".5", 0}, Row{"5.", 5}, Row{"1e3", 1000}, Row{"1D+2", 100},
        Row{"1e-400", 0}, Row{"2147483647.4", 2147483647}, Row{"-2147483648", -2147483647 - 1}}) {
    EXPECT_EQ(ToLong(text), value) << text;
    EXPECT_TRUE(IsNumeric(text)) << text;
  }
  for (const char* text : {"2147483648", "-2147483649", "2147483647.5", "1e300"}) {
    EXPECT_EQ(ErrorOf([&] { ToLong(text); }), 6) << text;
    EXPECT_TRUE(IsNumeric(text)) << text;
  }
  for (const char* text : {"", " ", "abc", "1 2", "1,5", "inf", "nan", "0x10", "-", ".", "1e",
                           "--1", "1\n", "1e+", "+"}) {
    EXPECT_EQ(ErrorOf([&] { ToLong(text); }), 13) << text;
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
  EXPECT_EQ(ErrorOf([] { ToDouble("1e999"); }), 6);
}

TEST(Conversions, KindsToKinds) {
  EXPECT_EQ(ToText(HostValue()), "");
  EXPECT_EQ(ToText(HostValue(true)), "True");
  EXPECT_EQ(ToText(HostValue(0.5)), "0.5");
  EXPECT_EQ(ToText(HostValue(2.2F)), "2.2");  // not 2.20000004768372
  EXPECT_EQ(ToText(HostValue(16777216.0F)), "1.677722E+07");
  EXPECT_EQ(ToLong(HostValue(16777216.0F)), 16777216);
  EXPECT_EQ(ToText(HostValue(std::int16_t{-3})), "-3");
  EXPECT_EQ(ToLong(HostValue(true)), -1);
  EXPECT_EQ(ToLong(HostValue()), 0);
  EXPECT_EQ(ToLong(HostValue(1.5)), 2);
  EXPECT_EQ(ErrorOf([] { ToInteger(HostValue(32768)); }), 6);
  EXPECT_EQ(ToBoolean(HostValue("false")), false);
  EXPECT_EQ(ToBoolean(HostValue("2")), true);
  for (const HostValue& none : {HostValue(HostValue::Missing{}), HostValue(HostValue::Foreign{}),
                                HostValue(HostValue::Array{})}) {
    EXPECT_EQ(ErrorOf([&] { ToText(none); }), 13);
    EXPECT_EQ(ErrorOf([&] { ToLong(none); }), 13);
  }
  EXPECT_EQ(ErrorOf([] { ToText(HostValue(HostValue::Null{})); }), 94);
  EXPECT_EQ(ErrorOf([] { HostValue("text").At(0); }), 13);
  EXPECT_EQ(ErrorOf([] { HostValue(HostValue::Array(2)).At(2); }), 9);
  EXPECT_EQ(ErrorOf([] { HostValue(HostValue::Array{HostValue::OutOfBounds{}, "a"}).At(0); }), 9);
  for (const HostValue& truth :
       {HostValue(true), HostValue(-1), HostValue(std::int16_t{-1}), HostValue(-1.0)}) {
    EXPECT_TRUE(EqualsTrue(truth));
  }
  EXPECT_FALSE(EqualsTrue(HostValue(1)) || EqualsTrue(HostValue("yes")) || EqualsTrue(HostValue()));
}

TEST(CurrentRuntimeError, TranslatesWhateverIsThrown) {
  const auto number = [](auto thrown) {
    try {
      throw thrown;
    } catch (...) {
      return CurrentRuntimeError().number;
    }
  };
  EXPECT_EQ(number(std::bad_alloc()), 7);
  EXPECT_EQ(number(std::runtime_error("x")), 51);
  EXPECT_EQ(number(42), 51);
}

}  // namespace
}  // namespace rotacasts
