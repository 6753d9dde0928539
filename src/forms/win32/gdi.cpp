#include "forms/win32/gdi.h"

#include <cmath>

#include "base/runtime_error.h"
#include "com/windows_api.h"

namespace rotacasts::win32 {

COLORREF ToColorRef(forms::Colour colour) {
  return RGB(colour.red, colour.green, colour.blue);
}

HFONT Fonts::OfSize(double points) {
  HFONT& font = fonts_[points];
  if (font != nullptr) return font;
  const int dotsPerInch = ::GetDeviceCaps(DeviceContext().Get(), LOGPIXELSY);
  LOGFONTW logical{};
  logical.lfHeight = -static_cast<LONG>(std::lround(points * dotsPerInch / 72));
  logical.lfWeight = FW_NORMAL;
  logical.lfCharSet = ANSI_CHARSET;
  ToWide(face_).copy(logical.lfFaceName, LF_FACESIZE - 1);
  font = ::CreateFontIndirectW(&logical);
  return font;
}

void Fonts::Free() {
  for (const auto& [size, font] : fonts_) ::DeleteObject(font);
  fonts_.clear();
}

std::string TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
  const int size = ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  return FromWide({text.data(), static_cast<std::size_t>(size)});
}

LONG TextWidth(HFONT font, std::string_view text) {
  const std::wstring wide = ToWide(text);
  const DeviceContext screen;
  const HGDIOBJ before = ::SelectObject(screen.Get(), font);
  SIZE size{};
  ::GetTextExtentPoint32W(screen.Get(), wide.data(), static_cast<int>(wide.size()), &size);
  ::SelectObject(screen.Get(), before);
  return size.cx;
}

HBRUSH Brushes::OfColour(COLORREF colour) {
  HBRUSH& brush = brushes_[colour];
  if (brush == nullptr) brush = ::CreateSolidBrush(colour);
  return brush;
}

void Brushes::Free() {
  for (const auto& [colour, brush] : brushes_) ::DeleteObject(brush);
  brushes_.clear();
}

void Picture::Load(const std::string& path) {
  std::wstring wide = ToWide(path);
  if (::GetFileAttributesW(wide.c_str()) == INVALID_FILE_ATTRIBUTES) {
    throw RuntimeError(ErrorNumber::FileNotFound, path);
  }
  ComPtr<IPicture> loaded;
  const HRESULT result =
      ::OleLoadPicturePath(wide.data(), nullptr, 0, 0, IID_IPicture, loaded.ReceiveVoid());
  if (FAILED(result) || !loaded) throw RuntimeError(ErrorNumber::InvalidPicture, path);
  picture_ = std::move(loaded);
}

void Picture::Draw(HDC context, const RECT& area) const {
  if (!picture_) return;
  OLE_XSIZE_HIMETRIC width = 0;
  OLE_YSIZE_HIMETRIC height = 0;
  picture_->get_Width(&width);
  picture_->get_Height(&height);
  // A picture's rows run from bottom to top.
  picture_->Render(context, area.left, area.top, area.right - area.left, area.bottom - area.top, 0,
                   height, width, -height, nullptr);
}

}  // namespace rotacasts::win32
