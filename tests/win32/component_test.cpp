// The DLL through COM: registration, type library, every way to call a member.

#include "support/component_test.h"

#include <algorithm>
#include <deque>
#include <fstream>
#include <random>

#include "base/conversions.h"
#include "base/version.h"
#include "com/error_object.h"
#include "com/late_bound.h"
#include "com/variant_conversion.h"
#include "component/identities.h"
#include "component/plugin_interface.h"
#include "program/win32/late_bound_plugin.h"

namespace rotacasts {
namespace {

const std::string kOwnVersion = std::to_string(ROTACASTS_VERSION_MAJOR) + "." +
                                std::to_string(ROTACASTS_VERSION_MINOR) + "." +
                                std::to_string(ROTACASTS_VERSION_PATCH);

using win32::Bstr;
using win32::ComPtr;
using win32::ComVariant;
using win32::PluginRecord;

GUID Identifier(const wchar_t* text) {
  GUID id{};
  ::CLSIDFromString(text, &id);
  return id;
}

ComPtr<win32::_clsPlugin> DualOf(const win32::LateBound& plugin) {
  ComPtr<win32::_clsPlugin> dual;
  plugin.Get()->QueryInterface(Identifier(win32::kInterfaceIdText), dual.ReceiveVoid());
  return dual;
}

TEST_F(ComponentTest, RegistersItsClassAndItsLibraryAndTakesThemBack) {
  for (const char* entry : {"DllUnregisterServer", "DllUnregisterServer", "DllRegisterServer"}) {
    EXPECT_EQ(installed.CallEntry(entry), S_OK) << entry;  // twice is not an error
    const bool isThere = entry == std::string("DllRegisterServer");
    ComPtr<ITypeLib> library;
    CLSID classId;
    LPOLESTR progId = nullptr;
    const HRESULT found[] = {
        ::LoadRegTypeLib(Identifier(win32::kLibraryIdText), 1, 0, 0, library.Receive()),
        ::CLSIDFromProgID(win32::kProgId, &classId),
        ::ProgIDFromCLSID(Identifier(win32::kClassIdText), &progId)};
    EXPECT_EQ(std::count(found, found + 3, S_OK), isThere ? 3 : 0) << entry;
    ::CoTaskMemFree(progId);
  }
}

// The test that lists the library's types compares all of it.
TEST_F(ComponentTest, AMemberIsFoundByTheIdentifierThatTheLibraryGivesItInAnyLetterCase) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(plugin->Get()->GetTypeInfo(0, 0, info.Receive()), S_OK);
  for (MEMBERID id = 0x60030003; id <= 0x60030010; ++id) {
    if (id == 0x60030008) continue;  // no member has it
    Bstr name;
    ASSERT_EQ(info->GetDocumentation(id, name.Address(), nullptr, nullptr, nullptr), S_OK);
    ::CharUpperW(name.Get());
    EXPECT_EQ(plugin->Identify(win32::FromBstr(name.Get()).c_str()), id);
  }
  EXPECT_EQ(ErrorOf([&] { plugin->Identify("GetDat"); }), 438);
}

// In the dual interface the caller owns the record, which may end with the last field.
TEST_F(ComponentTest, TheDescriptorIsTheSameRecordThroughBothInterfaces) {
  const ComVariant result = plugin->Invoke(0x60030003, nullptr, 0);
  ASSERT_EQ(result.Get().vt, VT_RECORD);
  IRecordInfo& library = *result.Get().pRecInfo;
  ULONG size = 0;
  EXPECT_EQ(library.GetSize(&size), S_OK);
  EXPECT_EQ(size, sizeof(PluginRecord));
  constexpr unsigned char kGuard = 0xA5;
  alignas(8) unsigned char block[256] = {};
  std::fill(block + size, std::end(block), kGuard);
  auto& own = *reinterpret_cast<PluginRecord*>(block);
  ASSERT_EQ(DualOf(*plugin)->GetData(&own), S_OK);
  EXPECT_EQ(std::count(block + size, std::end(block), kGuard),
            static_cast<std::ptrdiff_t>(sizeof block - size));
  const auto& record = *static_cast<const PluginRecord*>(result.Get().pvRecord);
  for (const PluginRecord* each : std::initializer_list<const PluginRecord*>{&record, &own}) {
    std::string texts;
    for (const BSTR text : {each->Name, each->File, each->Version, each->Author, each->HelpFile,
                            each->MinKXVer, each->MinQMRVer, each->MinZDLVer, each->MinTVXVer}) {
      texts += win32::FromBstr(text) + "|";
    }
    EXPECT_EQ(texts, "Rotacasts|tvxRT.dll|" + kOwnVersion +
                         "|Oren Halvik (Aka Marrow)|tvxRT_help.chm|"
                         "1105|1105|1305|31103|");
    EXPECT_EQ(each->HasInterface & each->ServerMenu & each->HasPrivis, VARIANT_TRUE);
    EXPECT_EQ(each->ProfileMenu | each->MainMenu, VARIANT_FALSE);
    EXPECT_EQ(each->ProfileMenuItems.vt, VT_EMPTY);
    EXPECT_EQ(each->Game.vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(ToText(win32::ToHostValue(each->Game).At(0)), "Delta Force,  V1.5.0.5");
    EXPECT_EQ(ToText(win32::ToHostValue(each->ServerMenuItems).At(0)), "Rotacasts");
  }
  EXPECT_NE(own.Game.parray, record.Game.parray) << "each call's arrays are its own";
  library.RecordClear(block);
  EXPECT_EQ(ToText(Call("GetPrivis", {}).At(1)), "Add/Remove Rotacasts|1");
}

TEST_F(ComponentTest, ArgumentsArriveHoweverTheyAreWrapped) {
  Show({"a", "b", "c"});
  const ComVariant data = win32::ToComVariant(Data(2, "JO"));
  VARIANT position = win32::ToComVariant(std::int32_t{0}).Release();
  Bstr reply;
  // By value, through the dual interface.
  ASSERT_EQ(DualOf(*plugin)->MoveMessageDownRem(2, data.Get(), position, reply.Address()), S_OK);
  EXPECT_STREQ(reply.Get(), L"1");

  // By reference, nested twice, with the name in capitals; the last argument comes first.
  VARIANT inner = data.Get();
  LONG index = 2;
  const ComVariant one = win32::ToComVariant("1");
  VARIANT values[] = {one.Get(), ReferenceTo(VT_VARIANT, &inner), ReferenceTo(VT_I4, &index)};
  const DISPID up = plugin->Identify("MOVEMESSAGEUPREM");
  EXPECT_EQ(ToText(win32::ToHostValue(plugin->Invoke(up, values, 3).Get())), "1");
  EXPECT_EQ(host.MessageFile(2), MessageFileBytes({"a", "b", "c"}));
}

TEST_F(ComponentTest, CallsThatMakeNoSenseAreRefusedWithTheirReason) {
  using Row = std::tuple<const char*, std::vector<HostValue>, int>;
  const HostValue none = HostValue::Missing{};
  for (const auto& [member, arguments, error] :
       {Row{"GetPrivis", {1}, 450}, Row{"DisableProfile", {}, 449},
        Row{"DisableProfile", {none}, 449}, Row{"DisableProfile", {"two"}, 13},
        Row{"DisableProfile", {"3000000000"}, 6},
        Row{"UnLoadInterface", {HostValue(HostValue::Array{1})}, 13},
        Row{"GetMessagesRem", {1, 2, 3, 4}, 450}}) {
    EXPECT_EQ(ErrorOf([&, &call = member, &with = arguments] { Call(call, with); }), error)
        << member << " with " << arguments.size();
  }
  DISPPARAMS empty{};
  EXPECT_EQ(plugin->Get()->Invoke(win32::kGetPrivis, IID_NULL, 0, DISPATCH_PROPERTYPUT, &empty,
                                  nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_TRUE(host.logged.empty() && user.boxes.empty());
}

/// A component whose only member fails, with a result code or its own error.
class FailingObject final : public win32::CountedObject<IDispatch> {
 public:
  using Row = std::tuple<HRESULT, WORD, HRESULT, const char*, std::int32_t, const char*>;
  explicit FailingObject(Row row) : row_(row) {}
  HRESULT WINAPI GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT WINAPI GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_FAIL; }
  HRESULT WINAPI Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                        UINT*) override {
    const auto& [result, code, scode, description, number, told] = row_;
    if (result != DISP_E_EXCEPTION) return result;
    *exception = {};
    exception->wCode = code;
    exception->bstrSource = Bstr("tvxZDL").Release();
    exception->bstrDescription = Bstr(description).Release();
    exception->bstrHelpFile = Bstr("C:\\zdl.chm").Release();
    exception->dwHelpContext = 1234;
    exception->scode = scode;
    return result;
  }

 private:
  const Row row_;
};

TEST(LateBound, AComponentsErrorReachesTheErrorObjectWithAllThatItTells) {
  using Row = FailingObject::Row;
  constexpr HRESULT kOwn = DISP_E_EXCEPTION;
  const auto ofItsOwn = static_cast<HRESULT>(0x80040201);
  const char* const words = " Gr\xC3\xBC\xC3\x9F\r\n";
  for (const Row& row :
       {Row{kOwn, 0, ofItsOwn, words, ofItsOwn, words}, Row{kOwn, 13, 0, "", 13, "Type mismatch"},
        Row{kOwn, 0, win32::ResultOf(76), "", 76, "Path not found"},
        Row{kOwn, 1001, 0, "", 1001, "Application-defined or object-defined error"},
        Row{DISP_E_PARAMNOTFOUND, 0, 0, "", 448, "Named argument not found"}}) {
    const auto& [result, code, scode, description, number, told] = row;
    std::string found;
    const win32::LateBound failing(ComPtr<IDispatch>::Take(new FailingObject(row)));
    const RuntimeError error = ThrownBy([&] { failing.Invoke(1, nullptr, 0); });
    const win32::LateBound object(win32::MakeErrorObject(error));
    for (const char* name : {"Source", "Description", "HelpFile", "HelpContext", "LastDllError"}) {
      found += ToText(win32::ToHostValue(win32::Member(object, name)().Get())) + "|";
    }
    for (const ComVariant& own :
         {win32::Member(object, "Number")(), object.Invoke(DISPID_VALUE, nullptr, 0)}) {
      EXPECT_EQ(win32::ToHostValue(own.Get()), HostValue(number));
    }
    EXPECT_EQ(found, result == kOwn ? "tvxZDL|" + std::string(told) + "|C:\\zdl.chm|1234|0|"
                                    : "tvxRT|" + std::string(told) + "||0|0|")
        << number;
  }
}

/// Makes the creation of the form's windows fail.
LRESULT CALLBACK RefuseForms(int code, WPARAM window, LPARAM) {
  wchar_t name[40] = L"";
  if (code == HCBT_CREATEWND) ::GetClassNameW(reinterpret_cast<HWND>(window), name, 40);
  return std::wstring(name) == L"rotacasts.form" ? 1 : 0;
}

TEST_F(ComponentTest, OnlyHidingAnswersAFailureToItsCaller) {
  const HHOOK hook = ::SetWindowsHookExW(WH_CBT, RefuseForms, nullptr, ::GetCurrentThreadId());
  const RuntimeError error = ThrownBy([&] { Call("HideInterface", {}); });
  EXPECT_EQ(error.number, 7);
  EXPECT_EQ(error.source, "tvxRT.clsPlugin");
  EXPECT_EQ(error.description, "Out of memory: no window is left");
  const Bstr empty;
  EXPECT_EQ(DualOf(*plugin)->HideInterface(empty.Get()), win32::ResultOf(7));
  ComPtr<IErrorInfo> info;
  EXPECT_EQ(::GetErrorInfo(0, info.Receive()), S_OK) << "through the dual interface as well";

  Load(2);  // this one reports the error
  EXPECT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(user.boxes.size(), 1U);
  ::UnhookWindowsHookEx(hook);
}

TEST_F(ComponentTest, TheComponentsAreCalledAsTheCoreCallsThemArgumentForArgument) {
  PluginHarness native;
  for (FakeHost* each : {&host, &native.host}) {
    each->MessageFile(2) = MessageFileBytes({"a", "{ShowNextMap}"});
    each->writesBack = true;
    each->folders.insert("C:\\Host");
  }
  Load(2);
  native.Load(2);
  const HostValue arguments[] = {HostValue::Missing{}, "<Gr\xC3\xBC\xC3\x9F>", "0", std::int16_t{5},
                                 std::int32_t{0},      std::int32_t{2},        0.6, "<x>"};
  for (std::size_t i = 0; i < std::size(arguments); ++i) {
    const bool isLast = i == std::size(kRemoteOperations);  // repeated, and made to fail
    const RemoteOperation& operation = kRemoteOperations[isLast ? 1 : i];
    if (isLast) host.failAtCall = native.host.failAtCall = 2;
    const HostValue data = Data(2, "JO");
    Call(std::string(operation.name).c_str(), {2, data, arguments[i]});
    (native.Plugin().*operation.call)(2, data, arguments[i]);
  }
  for (FakeHost* each : {&host, &native.host}) {
    std::erase_if(each->calls, [](const std::string& call) {  // of the system, not of a sibling
      return call.starts_with("Create") || call.starts_with("create");
    });
    for (std::string& call : each->calls) {
      if (call.starts_with("AppendFile")) call = "AppendFile";  // the log's name contains the date
    }
  }
  EXPECT_EQ(host.calls, native.host.calls);
  EXPECT_GT(host.calls.size(), 20U);
  EXPECT_EQ(host.MessageFile(2), native.host.MessageFile(2));
  EXPECT_EQ(host.logged, native.host.logged);
  EXPECT_EQ(user.boxes.size(), native.host.boxes.size());
}

TEST_F(ComponentTest, AReferenceThatTheCalleeLeavesAloneIsNotWrittenBack) {
  host.longs[0x00C87598] = host.longs[0x011E1408] = 2;  // running
  Show({"a", "b"});
  host.insideCall = [&] {
    if (!host.calls.back().starts_with("AddMsgB")) return;
    host.insideCall = nullptr;
    Load(2, "JO_AFF");
  };
  ::SendMessageW(Form(), WM_TIMER, 2, 0);
  ::SendMessageW(Form(), WM_TIMER, 2, 0);
  EXPECT_EQ(host.calls.back(), "AddMsgB(2, 4002, b, true, MSG, 3, JO_AFF)");
}

TEST(VariantConversion, AHostsValuesKeepTheirBoundsAndTheirDigits) {
  VARIANT fromOne{};
  fromOne.vt = VT_ARRAY | VT_VARIANT;
  fromOne.parray = ::SafeArrayCreateVector(VT_VARIANT, 1, 2);
  const HostValue array = win32::ToHostValue(fromOne);
  ::VariantClear(&fromOne);
  EXPECT_EQ(ErrorOf([&] { array.At(0); }), 9);
  EXPECT_TRUE(array.At(2).IsEmpty());
  VARIANT single{};
  single.vt = VT_R4;
  single.fltVal = 2.2F;
  EXPECT_EQ(ToText(win32::ToHostValue(single)), "2.2");
}

TEST_F(ComponentTest, WhatTheComponentsLackIsReportedWithItsNumber) {
  plugin.reset();
  ASSERT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK);
  siblings.reset();
  // The memory component has other members than expected.
  const auto utilities = host::MakeUtilityObject(*utility);
  const host::ObjectRegistration strange(MemoryComponent::kProgId, host::kMemoryClassId, utilities);
  const host::ObjectRegistration good(UtilityComponent::kProgId, host::kUtilityClassId, utilities);
  plugin.emplace(InstalledPlugin::Create());
  Load(2);
  Call("AddMessageRem", {2, Data(2, "JO"), "<x>"});
  ASSERT_FALSE(user.boxes.empty());
  EXPECT_NE(user.boxes.back().find("Error 438: "), std::string::npos) << user.boxes.back();

  // The file-system object fails: its number and description arrive.
  host.logged.clear();
  const HostValue data =
      Data(2, "JO", {{pdat::kSharedLog, false}, {pdat::kProfileFolder, "nowhere"}});
  Call("EnableRTRem", {2, data, "1"});
  ASSERT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(host.logged[0].find("EnableRTRem: 76 "), 0U) << host.logged[0];
}

TEST_F(ComponentTest, AHostIsToldWhyThePluginCannotBeCreated) {
  host::MachineFiles machine;
  host::IniFiles files(machine);
  const auto expect = [&](const std::string& why) {
    const auto create = [&] { const host::LateBoundPlugin created("C:\\Host", files); };
    const std::string said = ThrownBy(create).description;
    EXPECT_EQ(said.find(why), 0U) << said;
  };
  const auto registerFile = [&](const char* file) {
    const std::wstring key = std::wstring(L"CLSID\\") + win32::kClassIdText + L"\\InprocServer32";
    const std::wstring path = win32::ToWide(file);
    ::RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, path.c_str(),
                      static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
  };
  expect("");  // it is created
  registerFile("C:\\Host\\none.dll");
  expect("tvxRT.clsPlugin cannot be created: C:\\Host\\none.dll is missing; register C:\\Host");
  std::ofstream("C:\\Host\\text.dll") << "no program";
  registerFile("C:\\Host\\text.dll");
  expect("tvxRT.clsPlugin cannot be created: C:\\Host\\text.dll cannot be loaded (");
  EXPECT_EQ(installed.CallEntry("DllUnregisterServer"), S_OK);
  expect("tvxRT.clsPlugin cannot be created: it is not registered; register C:\\Host");
  EXPECT_EQ(installed.CallEntry("DllRegisterServer"), S_OK);
}

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
    value->llVal = isObject ? 0 : Few<LONGLONG>({0, 1, 2, 3, -1, 32768, INT32_MAX, INT64_MAX});
    if (value->vt == VT_BSTR) {
      value->bstrVal = ::SysAllocString(Few<const wchar_t*>(
          {L"", L"1", L"2", L"JO", L"srv2", L"<a>", L"<x\r\n[Options]>", L"\xD800", nullptr}));
    }
    if (value->vt == VT_ERROR && Below(2) == 0) value->scode = DISP_E_PARAMNOTFOUND;
    if (Below(4) != 0) return value;
    return Keep(ReferenceTo(value->vt, Below(8) == 0 ? nullptr : &value->llVal));
  }
  unsigned Below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }

 private:
  template <class T>
  T Few(std::initializer_list<T> few) {
    return few.begin()[Below(few.size())];
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
  Load(3);  // known to the plugin, but not named in the calls below
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
  Show({"a", "b"});  // it still works
  EXPECT_EQ(Rows(), (Texts{"a", "b"}));
}

}  // namespace
}  // namespace rotacasts
