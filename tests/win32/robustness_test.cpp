// The DLL under callers that mean it no good, and over a long life.

#include <algorithm>
#include <deque>
#include <random>

#include "com/variant_conversion.h"
#include "com/windows_api.h"
#include "support/component_test.h"

namespace rotacasts {
namespace {

using testing::ComponentTest;
using testing::MessageFileBytes;
using testing::PumpWaiting;
using testing::ReferenceTo;
using win32::ComVariant;

/// Makes VARIANTs of every kind, by reference and nested, valid or hardly so. They live as long as
/// it does.
class Zoo {
 public:
  explicit Zoo(std::mt19937& random) : random_(random) {}

  VARIANT* Catch(int depth = 0) {
    const unsigned choice = Below(10);
    if (choice < 2 && depth < 12) return Keep(ReferenceTo(VT_VARIANT, Catch(depth + 1)));
    if (choice < 4 && depth < 3) return Array(depth);
    VARIANT* value = Keep({});
    value->vt = static_cast<VARTYPE>(Below(VT_UINT + 1));
    if (value->vt == VT_VARIANT || value->vt == VT_DECIMAL) value->vt = VT_R8;
    const bool isObject = value->vt == VT_DISPATCH || value->vt == VT_UNKNOWN;
    value->llVal = isObject ? 0 : Number();
    if (value->vt == VT_BSTR) value->bstrVal = Text();
    if (value->vt == VT_ERROR && Below(2) == 0) value->scode = DISP_E_PARAMNOTFOUND;
    if (Below(4) != 0) return value;
    return Keep(ReferenceTo(value->vt, Below(8) == 0 ? nullptr : &value->llVal));
  }
  unsigned Below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }

 private:
  LONGLONG Number() {
    const LONGLONG few[] = {0, 1, 2, 3, -1, 32768, INT32_MAX, INT32_MIN, INT64_MAX};
    return Below(3) == 0 ? static_cast<LONGLONG>(random_()) : few[Below(std::size(few))];
  }
  BSTR Text() {
    const wchar_t* few[] = {L"",       L"1",   L"2", L"JO", L"srv2", L"<a>", L"<x\r\n[Options]>",
                            L"\xD800", nullptr};
    return ::SysAllocString(few[Below(std::size(few))]);
  }
  VARIANT* Array(int depth) {
    SAFEARRAYBOUND bounds[2] = {{Below(16), static_cast<LONG>(Below(3)) - 1}, {2, 0}};
    VARIANT* value = Keep({});
    value->vt = VT_ARRAY | VT_VARIANT;
    value->parray = ::SafeArrayCreate(VT_VARIANT, Below(8) == 0 ? 2 : 1, bounds);
    for (ULONG i = 0; i < bounds[0].cElements; ++i) {
      VARIANT* element = Catch(depth + 1);
      if ((element->vt & VT_BYREF) != 0) continue;
      ::VariantCopy(static_cast<VARIANT*>(value->parray->pvData) + i, element);
    }
    return value;
  }
  VARIANT* Keep(const VARIANT& value) { return kept_.emplace_back(value).Address(); }

  std::mt19937& random_;
  std::deque<ComVariant> kept_;
};

TEST_F(ComponentTest, NoCallHoweverMadCrashesItOrTouchesAnotherProfile) {
  constexpr int kCalls = 5000;
  std::mt19937 random(1);
  const std::string others = host.MessageFile(3) = MessageFileBytes({"x"});
  Load(3);  // known to the plugin, and spoken of by no data below
  int answered = 0;
  for (int i = 0; i < kCalls; ++i) {
    Zoo zoo(random);
    std::vector<VARIANT> arguments(zoo.Below(6));
    for (VARIANT& argument : arguments) argument = *zoo.Catch();
    const UINT count = static_cast<UINT>(arguments.size());
    const bool isNamed = zoo.Below(16) == 0;
    DISPID named[] = {static_cast<DISPID>(zoo.Below(5)), DISPID_PROPERTYPUT};
    DISPPARAMS parameters{arguments.data(), named, count, isNamed ? std::min(2U, count) : 0};
    const bool isStranger = zoo.Below(20) == 0;
    const auto member = static_cast<DISPID>(isStranger ? random() : 0x60030000 + zoo.Below(20));
    const auto flags = static_cast<WORD>(zoo.Below(20) == 0 ? zoo.Below(16) : DISPATCH_METHOD);
    ComVariant result;
    EXCEPINFO exception{};
    UINT bad = 0;
    const HRESULT outcome = plugin->Get()->Invoke(member, IID_NULL, 0, flags, &parameters,
                                                  zoo.Below(3) == 0 ? nullptr : result.Address(),
                                                  zoo.Below(3) == 0 ? nullptr : &exception, &bad);
    ::SysFreeString(exception.bstrSource);
    ::SysFreeString(exception.bstrDescription);
    answered += outcome == S_OK ? 1 : 0;
    if (i % 1000 == 0) host.calls.clear(), PumpWaiting();
  }
  EXPECT_GT(answered, kCalls / 20) << "the calls hardly ever get through";
  EXPECT_EQ(host.MessageFile(3), others);
  Show({"a", "b"});  // it works on as if nothing had been
  EXPECT_EQ(Rows(), (std::vector<std::string>{"a", "b"}));
}

/// How far the system's tables of handles are in use. Wine counts no objects for a process, but
/// gives a freed handle out again before a new one, so what leaks makes the numbers rise.
struct HandlesInUse {
  DWORD user = 0;
  DWORD drawing = 0;

  void Note(HWND window) {
    const HBRUSH brush = ::CreateSolidBrush(0x123456);
    user = std::max<DWORD>(user, LOWORD(reinterpret_cast<ULONG_PTR>(window)));
    drawing = std::max<DWORD>(drawing, LOWORD(reinterpret_cast<ULONG_PTR>(brush)));
    ::DeleteObject(brush);
  }
};

/// Who holds a component, besides the one who asks.
ULONG References(const char* progId) {
  const win32::LateBound component = win32::LateBound::Create(progId);
  component.Get()->AddRef();
  return component.Get()->Release() - 1;
}

TEST_F(ComponentTest, AThousandLivesLeaveNothingBehind) {
  constexpr int kRounds = 1000;
  constexpr int kToWarmUp = 100;
  host.MessageFile(2) = MessageFileBytes({"a", "b"});
  HandlesInUse before;
  HandlesInUse after;
  plugin.reset();
  EXPECT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK);  // which lets go of the components
  const ULONG references = References(MemoryComponent::kProgId);
  for (int round = 0; round < kRounds; ++round) {
    plugin.emplace(testing::InstalledPlugin::Create());
    Load(2);
    if (round % 20 == 0) user.WillChoose({"Move Down"}), RightClickRow(0);
    (round < kToWarmUp ? before : after).Note(Form());
    if (round % 3 == 0) Call("HideInterface", {});
    Call("UnLoadInterface", {""});
    plugin.reset();
    ASSERT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK) << "round " << round;
    PumpWaiting();
    host.calls.clear();
    user.menus.clear();
  }
  EXPECT_LE(after.user, before.user) << "windows or menus stay";
  EXPECT_LE(after.drawing, before.drawing) << "fonts, brushes or pictures stay";
  EXPECT_EQ(References(MemoryComponent::kProgId), references);
  EXPECT_EQ(References(UtilityComponent::kProgId), references);
  MSG timer;
  EXPECT_EQ(::PeekMessageW(&timer, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE), FALSE);
}

}  // namespace
}  // namespace rotacasts
