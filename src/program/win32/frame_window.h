// The host's window: the profiles on the left, the plugin's window on the right.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "console/console_protocol.h"
#include "forms/win32/gdi.h"
#include "host/hosted_plugin.h"

namespace rotacasts::host {

/// A command of another console, on its way to the frame's thread, and its answer on the way back.
struct ConsoleQuestion {
  std::string line;
  ConsoleAnswer answer = {};
};

/// A top-level window, visible from the start and destroyed with this object. Closing it ends the
/// message loop.
class FrameWindow final : public PluginSite {
 public:
  struct Row {
    std::int32_t profile;
    std::string label;
  };
  /// Shows a row for each profile. Errors: 7 if the system has no window left.
  explicit FrameWindow(std::vector<Row> rows);
  ~FrameWindow() override;
  FrameWindow(const FrameWindow&) = delete;
  FrameWindow& operator=(const FrameWindow&) = delete;

  /// The user has chosen a profile.
  std::function<void(std::int32_t profile)> onChoose;
  /// A line of the console arrived (kConsoleLine); returning false ends the message loop.
  std::function<bool(const std::string& line)> onConsoleLine;
  /// The person logs off or the machine is shut down: the process may end once this has returned.
  std::function<void()> onSessionEnd;
  static constexpr UINT kConsoleLine = WM_APP + 1;
  /// A question of another console arrived (kConsoleQuestion).
  std::function<void(ConsoleQuestion& question)> onConsoleQuestion;
  static constexpr UINT kConsoleQuestion = WM_APP + 2;

  HWND Window() const { return window_; }
  PluginArea Area() const override;
  void Shown(std::int32_t profile) override;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
  void CreateParts();
  HWND CreatePart(HWND parent, DWORD extendedStyle, const wchar_t* windowClass, const wchar_t* text,
                  DWORD style, double points);
  void FillList();
  void Arrange() const;
  SIZE SmallestSize() const;
  HBRUSH Face();
  void HandleCommand(HWND control, WORD code);
  void HandleChoice();
  void LimitSize(MINMAXINFO& limits) const;
  void EraseBackground(HDC target);
  void HandleConsole(UINT message, LPARAM what);

  const std::vector<Row> rows_;
  win32::Fonts fonts_;
  win32::Brushes brushes_;
  int listWidth_ = 0;  // pixels
  HWND window_ = nullptr;
  HWND caption_ = nullptr;
  HWND list_ = nullptr;
  HWND area_ = nullptr;
  HWND heading_ = nullptr;
  HWND lastFocus_ = nullptr;
};

/// Runs until the frame is closed or the console quits.
void RunMessageLoop(const FrameWindow& frame);

}  // namespace rotacasts::host
