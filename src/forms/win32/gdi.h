// Owners of drawing objects: fonts, brushes, pictures.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "com/com_support.h"
#include "com/windows_api.h"
#include "forms/control.h"

namespace rotacasts::win32 {

/// A window's device context, or the screen's.
class DeviceContext {
 public:
  explicit DeviceContext(HWND window = nullptr) : window_(window), context_(::GetDC(window)) {}
  ~DeviceContext() { ::ReleaseDC(window_, context_); }
  DeviceContext(const DeviceContext&) = delete;
  DeviceContext& operator=(const DeviceContext&) = delete;
  HDC Get() const { return context_; }

 private:
  const HWND window_;
  const HDC context_;
};

COLORREF ToColorRef(forms::Colour colour);

/// The fonts of one face, created on demand and freed together.
class Fonts {
 public:
  explicit Fonts(std::string face) : face_(std::move(face)) {}
  Fonts(const Fonts&) = delete;
  Fonts& operator=(const Fonts&) = delete;
  ~Fonts() { Free(); }
  HFONT OfSize(double points);
  void Free();

 private:
  const std::string face_;
  std::map<double, HFONT> fonts_;
};

std::string TextOf(HWND window);

/// The width of a line of text, in pixels of the screen.
LONG TextWidth(HFONT font, std::string_view text);

/// Solid brushes, created on demand and freed together.
class Brushes {
 public:
  Brushes() = default;
  Brushes(const Brushes&) = delete;
  Brushes& operator=(const Brushes&) = delete;
  ~Brushes() { Free(); }
  HBRUSH OfColour(COLORREF colour);
  void Free();

 private:
  std::map<COLORREF, HBRUSH> brushes_;
};

/// A picture loaded from a file, which is not kept open.
class Picture {
 public:
  /// Errors: 53 if the file is missing, 481 if it is not a picture (the old picture stays).
  void Load(const std::string& path);
  /// Draws the picture in the size of the rectangle; does nothing without a picture.
  void Draw(HDC context, const RECT& area) const;
  bool IsLoaded() const { return static_cast<bool>(picture_); }

 private:
  ComPtr<IPicture> picture_;
};

}  // namespace rotacasts::win32
