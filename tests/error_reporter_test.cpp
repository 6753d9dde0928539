// Start-up, the descriptor and error reporting.

#include "services/error_reporter.h"

#include "support/fake_host.h"

namespace rotacasts {
namespace {

constexpr const char* kConfig = "C:\\Host\\settings\\config.ini";

TEST(HostFolder, IsTheModulesFolderWithoutThePluginFolders) {
  for (const auto& [module, folder] :
       {std::pair("C:\\Games\\Host\\Plugins", "C:\\Games\\Host"),
        {"C:\\Games\\Host\\plugins", "C:\\Games\\Host"},
        {"C:\\Games\\Host\\PLUGINS", "C:\\Games\\Host\\PLUGINS"},
        {"C:\\Plugins\\Host\\Plugins", "C:\\Host"},
        {"C:\\Host\\PluginsOld", "C:\\HostOld"},
        {"C:\\Src\\dlls\\Rotacasts", "C:\\Src"},
        {"C:\\Src\\dlls\\Plugins\\Rotacasts", "C:\\Src"},
        {"C:\\a\\Plug\\pluginsins", "C:\\a\\Plugins"}}) {  // each kind is removed in one pass
    EXPECT_EQ(HostFolderOf(module), folder);
  }
}

class ErrorReporterTest : public PluginTest {
 protected:
  void Report(bool quiet = false, std::int32_t profile = 2) {
    const RuntimeError error(ErrorNumber::TypeMismatch);
    State().reporter.ReportError({"tmrRT", error, profile, 0, quiet});
  }
  static constexpr const char* kText =
      "DLL Error!|Error Line: 0\r\nError 13: Type mismatch\r\nDLL: tvxRT.dll\r\n"
      "Function/Sub: tmrRT\r\n\r\nError Report Sent: ";
};

TEST_F(ErrorReporterTest, SendsAReportWhenTheConfigurationSaysOne) {
  using Row = std::tuple<const char*, bool, const char*>;
  for (const auto& [setting, delivers, outcome] :
       {Row{"1", true, "Yes"}, Row{"1", false, "Failed!"}, Row{" 1.0 ", true, "Yes"},
        Row{"0", true, "No"}, Row{"2", true, "No"}, Row{"1.5", true, "No"}}) {
    host.files[kConfig] = std::string("[Settings]\r\nReportErrors=") + setting + "\r\n";
    host.delivers = delivers;
    host.reports.clear();
    Report();
    EXPECT_EQ(TakeBoxes(), Texts{std::string(kText) + outcome}) << setting;
    EXPECT_EQ(host.reports.size(), std::string(outcome) == "No" ? 0U : 1U) << setting;
  }
  EXPECT_EQ(host.logged.size(), 6U);
}

TEST_F(ErrorReporterTest, TheReportNamesTheAffiliateFlagOfAKnownProfile) {
  host.files[kConfig] = "[Settings]\r\nReportErrors=1\r\n";
  SetProfileData(2, Data(2, "JO_AFF"));
  Report();
  Report(false, 99);
  const HostValue::Array known{"13", "Type mismatch", "tvxRT.dll 1.2.9", "tmrRT", true, 0};
  HostValue::Array unknown = known;
  unknown[4] = HostValue();
  EXPECT_EQ(host.reports, (std::vector<HostValue>{known, unknown}));
}

TEST_F(ErrorReporterTest, AnErrorWhileReportingReplacesTheBox) {
  for (const char* bytes : {"", "[Settings]\r\nReportErrors=yes\r\n"}) {
    host.files[kConfig] = bytes;
    Report(true);
    EXPECT_EQ(TakeBoxes(), Texts{"tvxRT.dll Error|13: Type mismatch"});
  }
}

TEST_F(ErrorReporterTest, WithoutALogTheAdministratorStillGetsTheText) {
  State();
  host.failAtCall = 1;
  Report();
  EXPECT_TRUE(host.fired);
  EXPECT_EQ(TakeBoxes(), Texts{std::string(kText) + "No"});
  host.failAtCall = 1;
  Report(true);
  Report(true);  // with a log
  EXPECT_EQ(host.logged.size(), 1U);
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(ErrorReporterTest, AFaultThatComesBackInsideItsOwnBoxDoesNotPileUpForEver) {
  constexpr int kMost = 8;
  int errors = 0;
  Texts others;
  toolkit.onMessageBox = [&](const std::string&, const std::string& title) {
    if (title != "DLL Error!") {
      others.push_back(title);
      return;
    }
    ++errors;
    if (host.logged.size() < 100) Report();
    if (toolkit.OpenMessageBoxes() < kMost) return;
    State().reporter.Notify(Outcome::Failure, "told all the same");
    host.files[kConfig].clear();
    Report();
  };
  Report();
  EXPECT_EQ(errors, kMost);
  EXPECT_EQ(host.logged.size(), kMost + 2U);  // each kind of error once more than there are boxes
  EXPECT_EQ(others, (Texts{"Failed!", "tvxRT.dll Error"}));
}

TEST_F(ErrorReporterTest, StartUpGoesOnWithoutTheComponentsThatFail) {
  host.hasUtility = false;
  Load(2);
  EXPECT_EQ(std::count(host.calls.begin(), host.calls.end(), "create memory component"), 0);
  ASSERT_FALSE(host.boxes.empty());
  EXPECT_EQ(host.boxes.front(),
            "DLL Error!|Error Line: 3\r\nError 429: ActiveX component can't create object\r\n"
            "DLL: tvxRT.dll\r\nFunction/Sub: Main\r\n\r\nError Report Sent: No");
  EXPECT_NE(host.boxes.back().find("Error 91: "), std::string::npos) << host.boxes.back();
  PluginHarness lacking;
  lacking.host.hasMemory = false;
  lacking.host.files[kConfig] = "[Settings]\r\nReportErrors=1\r\n";
  lacking.State();
  EXPECT_EQ(lacking.host.logged, Texts{"Main: 429 ActiveX component can't create object"});
  ASSERT_EQ(lacking.host.reports.size(), 1U);
  EXPECT_TRUE(lacking.host.reports[0].At(4).IsEmpty());
}

}  // namespace
}  // namespace rotacasts
