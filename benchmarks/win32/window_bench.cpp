// The settings window, from the plugin's creation until it is painted, against a bare window with
// the same controls; and the memory of both.

#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>

#include "program/win32/late_bound_plugin.h"
#include "services/profile_data.h"
#include "siblings/host_platform.h"
#include "siblings/win32/sibling_objects.h"
#include "ui/layout.h"
#include "win32/turns.h"

#include <psapi.h>  // needs the types of windows.h

namespace rotacasts::bench {
namespace {

constexpr int kProcesses = 7;  // for each side
constexpr int kRounds = 31;

double PrivateKilobytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  if (counters.PagefileUsage == 0) throw std::runtime_error("the system does not tell the memory");
  return static_cast<double>(counters.PagefileUsage) / 1024;
}

BOOL CALLBACK CountWindow(HWND, LPARAM counter) {
  ++*reinterpret_cast<int*>(counter);
  return TRUE;
}

/// A host for both windows: its own window, painted, and the sibling components.
class Scene {
 public:
  explicit Scene(const std::string& hostFolder) : platform_(hostFolder) {
    ::SetForegroundWindow(frame_);
    Paint();
  }
  ~Scene() { ::DestroyWindow(frame_); }
  HWND Window() const { return frame_; }
  /// Paints everything that needs painting.
  void Paint() const {
    ::RedrawWindow(frame_, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    ::GdiFlush();
  }
  int CountControls() const {
    const HWND form = ::GetWindow(frame_, GW_CHILD);
    if (form == nullptr || ::IsWindowVisible(form) == FALSE) {
      throw std::runtime_error("no window is shown");
    }
    int count = 0;
    ::EnumChildWindows(form, CountWindow, reinterpret_cast<LPARAM>(&count));
    return count;
  }

  host::IniFiles& Files() { return platform_.Files(); }

 private:
  host::HostPlatform platform_;
  const std::unique_ptr<MemoryComponent> memory_ = platform_.CreateMemory();
  const std::unique_ptr<UtilityComponent> utility_ = platform_.CreateUtility();
  const host::SiblingRegistration siblings_{*memory_, *utility_};
  const HWND frame_ =
      ::CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN,
                        20, 20, 900, 600, nullptr, nullptr, nullptr, nullptr);
};

class PluginWindow {
 public:
  PluginWindow(Scene& scene, const std::string& hostFolder)
      : scene_(scene), plugin_(hostFolder, scene.Files()) {}
  ~PluginWindow() { plugin_.UnLoadInterface(); }
  void Show() {
    HostValue::Array data(pdat::kSize);
    data[pdat::kGameCode] = "JO";
    data[pdat::kProcessHandle] = 101;
    data[pdat::kMessageTarget] = "4001";
    data[pdat::kProfileFolder] = "srv1";
    data[pdat::kAreaWidth] = layout::kClientWidth;
    data[pdat::kAreaHeight] = layout::kClientHeight;
    plugin_.LoadInterface(1, reinterpret_cast<forms::WindowHandle>(scene_.Window()), data);
    scene_.Paint();
  }

 private:
  const Scene& scene_;
  host::LateBoundPlugin plugin_;
};

/// A window with the controls of the layout, all of them standard ones.
class BareWindow {
 public:
  explicit BareWindow(const Scene& scene) : scene_(scene) {}
  ~BareWindow() { ::DestroyWindow(form_); }
  void Show() {
    form_ = Create(scene_.Window(), L"STATIC", "", WS_CLIPCHILDREN,
                   {0, 0, layout::kClientWidth, layout::kClientHeight});
    for (const layout::ControlRow& row : layout::Controls()) {
      CreateControl(row.kind, row.text, row.bounds);
    }
    CreateControl(forms::Kind::Image, "", layout::kAddButton);
    CreateControl(forms::Kind::Label, "Add", layout::kAddButton);
    ::ShowWindow(form_, SW_SHOW);
    scene_.Paint();
  }

 private:
  static HWND Create(HWND parent, const wchar_t* windowClass, std::string_view text, DWORD style,
                     const forms::Rectangle& twips) {
    const HWND window = ::CreateWindowExW(
        0, windowClass, win32::ToWide(text).c_str(), WS_CHILD | style, twips.left / 15,
        twips.top / 15, twips.width / 15, twips.height / 15, parent, nullptr, nullptr, nullptr);
    if (window == nullptr) throw std::runtime_error("no window is left");
    return window;
  }
  void CreateControl(forms::Kind kind, std::string_view text, const forms::Rectangle& bounds) {
    const auto [windowClass, style] = [kind]() -> std::pair<const wchar_t*, DWORD> {
      switch (kind) {
        case forms::Kind::Frame:
          return {L"BUTTON", BS_GROUPBOX};
        case forms::Kind::CheckBox:
          return {L"BUTTON", BS_AUTOCHECKBOX};
        case forms::Kind::TextBox:
          return {L"EDIT", WS_BORDER};
        case forms::Kind::ListBox:
          return {L"LISTBOX", WS_BORDER};
        default:
          return {L"STATIC", 0};
      }
    }();
    const HWND control = Create(form_, windowClass, text, WS_VISIBLE | style, bounds);
    ::SendMessageW(control, WM_SETFONT,
                   reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
  }

  const Scene& scene_;
  HWND form_ = nullptr;
};

/// What a separate process measures.
struct Showing {
  double time = 0;     // nanoseconds
  double before = 0;   // kilobytes, without DLL and window
  double created = 0;  // with the plugin, if this side has one
  double shown = 0;
};

Showing RunProcess(const std::string& side, const std::string& hostFolder) {
  wchar_t program[MAX_PATH];
  ::GetModuleFileNameW(nullptr, program, MAX_PATH);
  const std::wstring command =
      L"\"" + std::wstring(program) + L"\" " + win32::ToWide(side + " " + hostFolder);
  std::FILE* const output = ::_wpopen(command.c_str(), L"r");
  Showing showing;
  const int read = output == nullptr
                       ? 0
                       : std::fscanf(output, "%lf %lf %lf %lf", &showing.time, &showing.before,
                                     &showing.created, &showing.shown);
  if (output != nullptr) ::_pclose(output);
  if (read != 4) throw std::runtime_error("a process that shows a window has failed");
  return showing;
}

Result MeasureLaterShowings(Scene& scene, const std::string& hostFolder) {
  int ourControls = 0;
  int theirControls = 0;
  Result result = TakeTurns(
      kRounds, "settings window, later times in a process", "bare window, the same controls", "",
      [&] {
        std::optional<PluginWindow> window;
        const double time = TimeOf([&] { window.emplace(scene, hostFolder).Show(); });
        ourControls = scene.CountControls();
        return time;
      },
      [&] {
        std::optional<BareWindow> window;
        const double time = TimeOf([&] { window.emplace(scene).Show(); });
        theirControls = scene.CountControls();
        return time;
      });
  if (ourControls != theirControls) {
    throw std::runtime_error("the windows have " + std::to_string(ourControls) + " and " +
                             std::to_string(theirControls) + " controls");
  }
  return result;
}

Result CompareKilobytes(const std::string& job, const std::vector<double>& ours,
                        const std::string& opponent, const std::vector<double>& theirs) {
  const double our = MedianOf(ours);
  const double their = MedianOf(theirs);
  return {job, Format("%.0f KB", our), opponent, Format("%.0f KB", their), "", our / their};
}

}  // namespace

std::vector<Result> MeasureWindow(const std::string& hostFolder) {
  std::vector<double> before;
  std::vector<double> created;
  std::vector<double> shown;
  std::vector<double> bareShown;
  std::vector<Result> results = {TakeTurns(
      kProcesses, "settings window, first time in a process", "bare window, the same controls", "",
      [&] {
        const Showing showing = RunProcess("plugin", hostFolder);
        before.push_back(showing.before);
        created.push_back(showing.created);
        shown.push_back(showing.shown);
        return showing.time;
      },
      [&] {
        const Showing showing = RunProcess("bare", hostFolder);
        bareShown.push_back(showing.shown);
        return showing.time;
      })};
  Scene scene(hostFolder);
  results.push_back(MeasureLaterShowings(scene, hostFolder));
  results.push_back(CompareKilobytes("private memory, plugin created", created,
                                     "the process before that", before));
  results.push_back(CompareKilobytes("private memory, settings window shown", shown,
                                     "the process with the bare window", bareShown));
  return results;
}

void ShowOnce(const std::string& side, const std::string& hostFolder) {
  Scene scene(hostFolder);
  Showing showing;
  showing.before = showing.created = PrivateKilobytes();
  std::optional<PluginWindow> plugin;
  std::optional<BareWindow> bare;
  if (side == "plugin") {
    showing.time = TimeOf([&] { plugin.emplace(scene, hostFolder); });
    showing.created = PrivateKilobytes();
    showing.time += TimeOf([&] { plugin->Show(); });
  } else {
    showing.time = TimeOf([&] { bare.emplace(scene).Show(); });
  }
  showing.shown = PrivateKilobytes();
  std::printf("%.0f %.0f %.0f %.0f\n", showing.time, showing.before, showing.created,
              showing.shown);
}

}  // namespace rotacasts::bench
