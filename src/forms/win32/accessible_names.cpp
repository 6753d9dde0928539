#include "forms/win32/accessible_names.h"

#include <utility>

namespace rotacasts::win32 {
namespace {

constexpr auto kWholeClient = static_cast<DWORD>(OBJID_CLIENT);

}  // namespace

void AccessibleNames::Give(HWND window, std::string_view name) {
  if (!std::exchange(wasTried_, true)) {
    ::CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                       services_.ReceiveVoid());
  }
  if (services_) {
    services_->SetHwndPropStr(window, kWholeClient, CHILDID_SELF, PROPID_ACC_NAME,
                              ToWide(name).c_str());
  }
}

void AccessibleNames::Remove(HWND window) {
  MSAAPROPID name = PROPID_ACC_NAME;
  if (services_) services_->ClearHwndProps(window, kWholeClient, CHILDID_SELF, &name, 1);
}

}  // namespace rotacasts::win32
