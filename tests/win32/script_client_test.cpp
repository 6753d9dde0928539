// A script that calls the plugin from a process that is not part of this project.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "com/com_support.h"
#include "support/installed_plugin.h"

namespace rotacasts {
namespace {

namespace fs = std::filesystem;

std::string ContentsOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

/// Runs a command for at most half a minute; returns its output.
std::string OutputOf(const std::wstring& command) {
  const fs::path file = "C:\\Host\\output.txt";
  std::wstring redirected = L"cmd.exe /c " + command + L" >" + file.wstring();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ::CreateProcessW(nullptr, redirected.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                   &startup, &process);
  EXPECT_EQ(::WaitForSingleObject(process.hProcess, 30000), WAIT_OBJECT_0)
      << "the script does not end; a message box may be open";
  for (const HANDLE handle : {process.hThread, process.hProcess}) ::CloseHandle(handle);
  return ContentsOf(file);
}

TEST(ScriptClientTest, AScriptCanCallEveryMember) {
  Installed();
  const HMODULE siblings = ::LoadLibraryW(L"siblings.dll");
  EXPECT_EQ(CallEntryOf(siblings, "DllRegisterServer"), S_OK);
  fs::remove("C:\\Host\\profiles\\srv1\\settings\\Rotacasts.ini");
  const fs::path script = OwnFolder() / "every_member.vbs";
  EXPECT_EQ(OutputOf(L"cscript.exe //nologo \"" + script.wstring() + L"\""),
            "every member answered\n");
  std::string log;
  for (const auto& entry : fs::directory_iterator("C:\\Host\\adminlogs")) {
    log += ContentsOf(entry.path());
  }
  EXPECT_NE(log.find("Script"), log.npos) << log;
  EXPECT_EQ(CallEntryOf(siblings, "DllUnregisterServer"), S_OK);
  ::FreeLibrary(siblings);
}

}  // namespace
}  // namespace rotacasts
