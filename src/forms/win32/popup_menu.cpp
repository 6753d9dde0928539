#include "forms/win32/popup_menu.h"

#include <vector>

#include "com/com_support.h"

namespace rotacasts::win32 {
namespace {

/// A platform menu while it is shown.
class ShownMenu {
 public:
  explicit ShownMenu(forms::MenuItem& menu) : handle_(Build(menu)) {}
  ShownMenu(const ShownMenu&) = delete;
  ShownMenu& operator=(const ShownMenu&) = delete;
  ~ShownMenu() { ::DestroyMenu(handle_); }

  /// Shows the menu; returns the chosen item or null.
  forms::MenuItem* Run(HWND owner) const {
    POINT pointer;
    ::GetCursorPos(&pointer);
    ::SetForegroundWindow(::GetAncestor(owner, GA_ROOT));
    const int chosen = ::TrackPopupMenuEx(handle_, TPM_RETURNCMD | TPM_RIGHTBUTTON, pointer.x,
                                          pointer.y, owner, nullptr);
    return chosen > 0 ? items_[static_cast<std::size_t>(chosen) - 1] : nullptr;
  }

 private:
  HMENU Build(forms::MenuItem& menu) {
    const HMENU handle = ::CreatePopupMenu();
    for (const auto& item : menu.items) {
      if (item->IsSeparator()) {
        ::AppendMenuW(handle, MF_SEPARATOR, 0, nullptr);
        continue;
      }
      const std::wstring caption = ToWide(item->caption);
      const UINT state = item->enabled ? MF_ENABLED : MF_GRAYED;
      if (!item->items.empty()) {
        ::AppendMenuW(handle, MF_POPUP | state, reinterpret_cast<UINT_PTR>(Build(*item)),
                      caption.c_str());
      } else {
        items_.push_back(item.get());
        ::AppendMenuW(handle, MF_STRING | state, items_.size(), caption.c_str());
      }
    }
    return handle;
  }

  std::vector<forms::MenuItem*> items_;  // an item's command is its index + 1
  HMENU handle_;
};

}  // namespace

void PopUpMenu(HWND owner, forms::MenuItem& menu) {
  forms::MenuItem* chosen = nullptr;
  {
    const ShownMenu shown(menu);
    chosen = shown.Run(owner);
  }
  if (chosen != nullptr) chosen->UserClicked();
}

}  // namespace rotacasts::win32
