// A script as a caller of the plugin, in a process that nobody here wrote.

#include <filesystem>
#include <fstream>
#include <sstream>

#include "com/com_support.h"
#include "support/installed_plugin.h"

#include <gtest/gtest.h>

namespace rotacasts {
namespace {

namespace fs = std::filesystem;

/// Registers the sibling components' DLL that lies beside the test program.
class RegisteredSiblings {
 public:
  RegisteredSiblings() : module_(::LoadLibraryW(L"siblings.dll")) { Call("DllRegisterServer"); }
  ~RegisteredSiblings() {
    Call("DllUnregisterServer");
    ::FreeLibrary(module_);
  }
  RegisteredSiblings(const RegisteredSiblings&) = delete;
  RegisteredSiblings& operator=(const RegisteredSiblings&) = delete;

 private:
  void Call(const char* entry) const {
    const FARPROC function = ::GetProcAddress(module_, entry);
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(function))(), S_OK);
  }
  HMODULE module_;
};

/// Runs a command for at most half a minute; what it printed.
std::string OutputOf(std::wstring command) {
  const fs::path file = "C:\\Host\\output.txt";
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const HANDLE output = ::CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                      CREATE_ALWAYS, 0, nullptr);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = startup.hStdError = output;
  PROCESS_INFORMATION process{};
  EXPECT_NE(::CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                             &startup, &process),
            FALSE);
  if (::WaitForSingleObject(process.hProcess, 30000) != WAIT_OBJECT_0) {
    ADD_FAILURE() << "the script does not end; a message box may be open";
    ::TerminateProcess(process.hProcess, 1);
  }
  for (const HANDLE handle : {process.hThread, process.hProcess, output}) ::CloseHandle(handle);
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST(ScriptClientTest, AScriptCanCallEveryMember) {
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  {
    const testing::InstalledPlugin installed;
    const RegisteredSiblings siblings;
    fs::remove("C:\\Host\\profiles\\srv1\\settings\\Rotacasts.ini");
    wchar_t own[MAX_PATH];
    ::GetModuleFileNameW(nullptr, own, MAX_PATH);
    const fs::path script = fs::path(own).parent_path() / "every_member.vbs";
    EXPECT_EQ(OutputOf(L"cscript.exe //nologo \"" + script.wstring() + L"\""),
              "every member answered\n");
    std::ostringstream log;
    for (const auto& entry : fs::directory_iterator("C:\\Host\\adminlogs")) {
      log << std::ifstream(entry.path()).rdbuf();
    }
    EXPECT_NE(log.str().find("Script"), std::string::npos) << log.str();
  }
  ::CoUninitialize();
}

}  // namespace
}  // namespace rotacasts
