// Owners of drawing objects: fonts, brushes, pictures.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "com/com_support.h"
#include "com/windows_api.h"
#include "forms/control.h"

namespace rotacasts::win32 {

COLORREF ToColorRef(forms::Colour colour);

/// The fonts of one face, made as they are needed and freed together.
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

/// The text of a window.
std::string TextOf(HWND window);

/// The width of a line of text, in pixels of the screen.
LONG TextWidth(HFONT font, std::string_view text);

/// Solid brushes, made as they are needed and freed together.
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

/// A picture read from a file, which is not kept open.
class Picture {
 public:
  /// Error 53 for a missing file, 481 for one that is no picture; what was loaded before stays.
  void Load(const std::string& path);
  /// Draws the picture over the rectangle; nothing without one.
  void Draw(HDC context, const RECT& area) const;
  bool IsLoaded() const { return static_cast<bool>(picture_); }

 private:
  ComPtr<IPicture> picture_;
};

}  // namespace rotacasts::win32
