// The DLL as COM sees it: registration, type library, every way to call a member.

#include <set>

#include "base/conversions.h"
#include "com/error_object.h"
#include "com/late_bound.h"
#include "com/variant_conversion.h"
#include "component/identities.h"
#include "component/plugin_interface.h"
#include "support/component_test.h"

namespace rotacasts {
namespace {

using testing::ComponentTest;
using testing::ErrorOf;
using testing::MessageFileBytes;
using testing::PathOf;
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
  ComPtr<ITypeLib> library;
  const GUID libraryId = Identifier(win32::kLibraryIdText);
  EXPECT_EQ(::LoadRegTypeLib(libraryId, 1, 0, 0, library.Receive()), S_OK);
  CLSID classId;
  EXPECT_EQ(::CLSIDFromProgID(win32::kProgId, &classId), S_OK);
  EXPECT_TRUE(IsEqualCLSID(classId, Identifier(win32::kClassIdText)));

  ASSERT_EQ(installed.CallEntry("DllUnregisterServer"), S_OK);
  EXPECT_NE(::CLSIDFromProgID(win32::kProgId, &classId), S_OK);
  EXPECT_NE(::LoadRegTypeLib(libraryId, 1, 0, 0, library.Receive()), S_OK);
  HKEY left = nullptr;
  const std::wstring key = std::wstring(L"CLSID\\") + win32::kClassIdText;
  EXPECT_EQ(::RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &left),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(installed.CallEntry("DllUnregisterServer"), S_OK) << "twice is no error";
  EXPECT_EQ(installed.CallEntry("DllRegisterServer"), S_OK);
}

// What the library declares in full is compared as a whole, by the test that lists its types.
TEST_F(ComponentTest, AMemberIsFoundByTheIdentifierThatTheLibraryGivesItInAnyLetterCase) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(plugin->Get()->GetTypeInfo(0, 0, info.Receive()), S_OK);
  int members = 0;
  for (MEMBERID id = 0x60030003; id <= 0x60030010; ++id) {
    Bstr name;
    if (FAILED(info->GetDocumentation(id, name.Address(), nullptr, nullptr, nullptr))) continue;
    ++members;
    ::CharUpperW(name.Get());
    EXPECT_EQ(plugin->Identify(win32::FromBstr(name.Get()).c_str()), id);
  }
  EXPECT_EQ(members, 13);
  EXPECT_EQ(ErrorOf([&] { plugin->Identify("GetDat"); }), 438);
}

// The dual interface's record is the host's own, which may end where the last field does.
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
    const std::pair<BSTR, const wchar_t*> texts[] = {
        {each->Name, L"Rotacasts"},
        {each->File, L"tvxRT.dll"},
        {each->Version, L"1.0.0"},  // from the version resource
        {each->Author, L"Oren Halvik (Aka Marrow)"},
        {each->HelpFile, L"tvxRT_help.chm"},
        {each->MinKXVer, L"1105"},
        {each->MinQMRVer, L"1105"},
        {each->MinZDLVer, L"1305"},
        {each->MinTVXVer, L"31103"}};
    for (const auto& [text, expected] : texts) EXPECT_STREQ(text, expected);
    const VARIANT_BOOL flags[] = {each->HasInterface, each->ServerMenu, each->HasPrivis,
                                  each->ProfileMenu, each->MainMenu};
    EXPECT_EQ(std::count(flags, flags + 3, VARIANT_TRUE), 3);
    EXPECT_EQ(std::count(flags + 3, flags + 5, VARIANT_FALSE), 2);
    EXPECT_EQ(each->ProfileMenuItems.vt, VT_EMPTY);
    EXPECT_EQ(each->Game.vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(ToText(win32::FromVariant(each->Game).At(0)), "Delta Force,  V1.5.0.5");
    EXPECT_EQ(ToText(win32::FromVariant(each->ServerMenuItems).At(0)), "Rotacasts");
  }
  EXPECT_NE(own.Game.parray, record.Game.parray) << "each call's arrays are its own";
  library.RecordClear(block);
  EXPECT_EQ(ToText(Call("GetPrivis", {}).At(1)), "Add/Remove Rotacasts|1");
}

TEST_F(ComponentTest, ArgumentsArriveHoweverTheyAreWrapped) {
  host.MessageFile(2) = MessageFileBytes({"a", "b", "c"});
  Load(2);
  const ComPtr<win32::_clsPlugin> dual = DualOf(*plugin);
  const ComVariant data = win32::ToVariant(testing::ProfileData(2, "JO"));
  VARIANT position = win32::ToVariant(std::int32_t{0}).Release();
  Bstr reply;
  // By value, through the dual interface.
  ASSERT_EQ(dual->MoveMessageDownRem(2, data.Get(), position, reply.Address()), S_OK);
  EXPECT_STREQ(reply.Get(), L"1");

  // By reference, nested twice, under a name in capitals; the last argument comes first.
  VARIANT inner = data.Get();
  VARIANT outer;
  ::VariantInit(&outer);
  outer.vt = VT_BYREF | VT_VARIANT;
  outer.pvarVal = &inner;
  LONG index = 2;
  VARIANT indexReference;
  ::VariantInit(&indexReference);
  indexReference.vt = VT_BYREF | VT_I4;
  indexReference.plVal = &index;
  const win32::TextArgument one("1");
  VARIANT values[] = {{}, outer, indexReference};
  one.Put(values[0]);
  const DISPID up = plugin->Identify("MOVEMESSAGEUPREM");
  EXPECT_EQ(ToText(win32::FromVariant(plugin->Invoke(up, values, 3).Get())), "1");
  EXPECT_EQ(host.MessageFile(2), MessageFileBytes({"a", "b", "c"}));

  // Omitted at the end, and as a value that says so: the operation asks for it and reports.
  const DISPID remove = plugin->Identify("DeleteMessageRem");
  win32::NumberArgument(2).Put(values[2]);
  plugin->Invoke(remove, values + 1, 2);
  values[0] = win32::ToVariant(Variant(Variant::Missing{})).Release();
  plugin->Invoke(remove, values, 3);
  EXPECT_EQ(host.logged.size(), 2U);
  EXPECT_EQ(user.boxes.size(), 2U);
  EXPECT_EQ(host.MessageFile(2), MessageFileBytes({"a", "b", "c"}));
}

TEST_F(ComponentTest, CallsThatMakeNoSenseAreRefusedWithTheirReason) {
  struct Row {
    const char* member;
    std::vector<Variant> arguments;
    HRESULT expected;
    WORD flags = DISPATCH_METHOD;
  };
  const Variant none = Variant::Missing{};
  for (const Row& row :
       std::initializer_list<Row>{{"GetPrivis", {1}, DISP_E_BADPARAMCOUNT},
                                  {"DisableProfile", {}, DISP_E_PARAMNOTOPTIONAL},
                                  {"DisableProfile", {none}, DISP_E_PARAMNOTOPTIONAL},
                                  {"DisableProfile", {"two"}, DISP_E_TYPEMISMATCH},
                                  {"DisableProfile", {"3000000000"}, DISP_E_OVERFLOW},
                                  {"UnLoadInterface", {Variant::Array{1}}, DISP_E_TYPEMISMATCH},
                                  {"GetMessagesRem", {1, 2, 3, 4}, DISP_E_BADPARAMCOUNT},
                                  {"GetPrivis", {}, DISP_E_MEMBERNOTFOUND, DISPATCH_PROPERTYPUT}}) {
    std::vector<ComVariant> owned;
    std::vector<VARIANT> reversed;
    for (const Variant& argument : row.arguments) owned.push_back(win32::ToVariant(argument));
    for (const ComVariant& value : owned) reversed.insert(reversed.begin(), value.Get());
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    EXPECT_EQ(plugin->Get()->Invoke(plugin->Identify(row.member), IID_NULL, 0, row.flags,
                                    &parameters, nullptr, nullptr, nullptr),
              row.expected)
        << row.member << " with " << row.arguments.size();
  }
  EXPECT_TRUE(host.logged.empty() && user.boxes.empty());
}

/// A component whose one member fails.
class FailingObject final : public win32::CountedObject<IDispatch> {
 public:
  FailingObject(HRESULT result, WORD code, HRESULT scode, const char* description)
      : result_(result), code_(code), scode_(scode), description_(description) {}
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*,
                                   EXCEPINFO* exception, UINT*) override {
    if (result_ != DISP_E_EXCEPTION) return result_;
    exception->wCode = code_;
    exception->scode = scode_;
    exception->bstrDescription = Bstr(description_).Release();
    exception->bstrSource = Bstr("tvxZDL").Release();
    exception->bstrHelpFile = Bstr("C:\\zdl.chm").Release();
    exception->dwHelpContext = 1234;
    return result_;
  }

 private:
  const HRESULT result_;
  const WORD code_;
  const HRESULT scode_;
  const std::string description_;
};

TEST(LateBound, AComponentsErrorReachesTheErrorObjectWithAllThatItTells) {
  using Row = std::tuple<HRESULT, WORD, HRESULT, const char*, std::int32_t, const char*>;
  const HRESULT ofItsOwn = static_cast<HRESULT>(0x80040201);
  for (const auto& [result, code, scode, description, number, words] :
       {Row{DISP_E_EXCEPTION, 0, ofItsOwn, " Gr\xC3\xBC\xC3\x9F\r\n", ofItsOwn,
            " Gr\xC3\xBC\xC3\x9F\r\n"},
        Row{DISP_E_EXCEPTION, 13, 0, "", 13, "Type mismatch"},
        Row{DISP_E_EXCEPTION, 0, win32::ResultOf(76), "", 76, "Path not found"},
        Row{DISP_E_EXCEPTION, 1001, 0, "", 1001, "Application-defined or object-defined error"},
        Row{DISP_E_PARAMNOTFOUND, 0, 0, "", 448, "Named argument not found"},
        Row{DISP_E_PARAMNOTOPTIONAL, 0, 0, "", 449, "Argument not optional"},
        Row{DISP_E_BADPARAMCOUNT, 0, 0, "", 450,
            "Wrong number of arguments or invalid property assignment"}}) {
    const win32::LateBound component(
        ComPtr<IDispatch>::Take(new FailingObject(result, code, scode, description)));
    std::optional<RuntimeError> raised;
    try {
      component.Invoke(1, nullptr, 0);
    } catch (const RuntimeError& error) {
      raised = error;
    }
    ASSERT_TRUE(raised) << number;
    const bool tells = result == DISP_E_EXCEPTION;
    const std::pair<const char*, Variant> properties[] = {{"Number", number},
                                                          {"Source", tells ? "tvxZDL" : "tvxRT"},
                                                          {"Description", words},
                                                          {"HelpFile", tells ? "C:\\zdl.chm" : ""},
                                                          {"HelpContext", tells ? 1234 : 0},
                                                          {"LastDllError", 0}};
    const win32::LateBound object(win32::MakeErrorObject(*raised));
    for (const auto& [name, value] : properties) {
      EXPECT_EQ(win32::FromVariant(win32::Member(object, name)().Get()), value) << name << number;
    }
    EXPECT_EQ(win32::FromVariant(object.Invoke(DISPID_VALUE, nullptr, 0).Get()), Variant(number));
  }
}

/// Refuses to create windows of the form's class while it lives.
class NoForms {
 public:
  NoForms() : hook_(::SetWindowsHookExW(WH_CBT, Refuse, nullptr, ::GetCurrentThreadId())) {}
  ~NoForms() { ::UnhookWindowsHookEx(hook_); }

 private:
  static LRESULT CALLBACK Refuse(int code, WPARAM window, LPARAM) {
    wchar_t name[40] = L"";
    if (code == HCBT_CREATEWND) ::GetClassNameW(reinterpret_cast<HWND>(window), name, 40);
    return std::wstring(name) == L"rotacasts.form" ? 1 : 0;
  }
  HHOOK hook_;
};

TEST_F(ComponentTest, OnlyHidingAnswersAFailureToItsCaller) {
  const NoForms noForms;
  EXCEPINFO exception{};
  DISPPARAMS none{};
  EXPECT_EQ(plugin->Get()->Invoke(0x60030010, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr,
                                  &exception, nullptr),
            DISP_E_EXCEPTION);
  EXPECT_EQ(exception.scode, win32::ResultOf(7));
  const Bstr empty;
  EXPECT_STREQ(exception.bstrSource, L"tvxRT.clsPlugin");
  EXPECT_NE(::SysStringLen(exception.bstrDescription), 0U);
  ::SysFreeString(exception.bstrSource);
  ::SysFreeString(exception.bstrDescription);
  EXPECT_EQ(DualOf(*plugin)->HideInterface(empty.Get()), win32::ResultOf(7));
  ComPtr<IErrorInfo> info;
  EXPECT_EQ(::GetErrorInfo(0, info.Receive()), S_OK) << "through the dual interface as well";

  Load(2);  // reports instead
  EXPECT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(user.boxes.size(), 1U);
}

TEST_F(ComponentTest, TheComponentsAreCalledAsTheCoreCallsThemArgumentForArgument) {
  const std::string before = MessageFileBytes({"a", "{ShowNextMap}"});
  testing::PluginHarness native;
  for (testing::FakeHost* each : {&host, &native.host}) {
    each->MessageFile(2) = before;
    each->writesBack = true;
    each->folders.insert("C:\\Host");
  }
  Load(2);
  native.Load(2);
  const Variant arguments[] = {Variant::Missing{}, "<Gr\xC3\xBC\xC3\x9F>", "0", std::int16_t{5},
                               std::int32_t{0},    std::int32_t{2},        0.6, "<x>"};
  for (std::size_t i = 0; i < std::size(arguments); ++i) {
    const bool isLast = i == std::size(kRemoteOperations);  // once more, and it fails
    const RemoteOperation& operation = kRemoteOperations[isLast ? 1 : i];
    if (isLast) host.failAtCall = native.host.failAtCall = 2;
    const Variant data = testing::ProfileData(2, "JO");
    Call(std::string(operation.name).c_str(), {2, data, arguments[i]});
    (native.Plugin().*operation.call)(2, data, arguments[i]);
  }
  const auto siblingCalls = [](const testing::FakeHost& called) {
    std::vector<std::string> calls;
    for (const std::string& call : called.calls) {
      const bool ofTheSystem = call.starts_with("Create") || call.starts_with("create");
      // The day's log has the day's name.
      calls.push_back(call.starts_with("AppendFile") ? "AppendFile" : call);
      if (ofTheSystem) calls.pop_back();
    }
    return calls;
  };
  EXPECT_EQ(siblingCalls(host), siblingCalls(native.host));
  EXPECT_GT(host.calls.size(), 20U);
  EXPECT_EQ(host.MessageFile(2), native.host.MessageFile(2));
  EXPECT_EQ(host.logged, native.host.logged);
  EXPECT_EQ(user.boxes.size(), native.host.boxes.size());
}

TEST_F(ComponentTest, WhatTheComponentsLackIsReportedWithItsNumber) {
  const auto startAnew = [&] {
    plugin.reset();
    ASSERT_EQ(installed.CallEntry("DllCanUnloadNow"), S_OK);
    plugin.emplace(testing::InstalledPlugin::Create());
  };
  const auto lastBox = [&] { return user.boxes.empty() ? "" : user.boxes.back(); };
  siblings.reset();  // no component can be created: nothing to log the error with either
  startAnew();
  EXPECT_NE(lastBox().find("Error 429: "), std::string::npos) << lastBox();

  // The memory component has other members than it should.
  const host::ObjectRegistration strange(MemoryComponent::kProgId, host::kMemoryClassId,
                                         host::MakeUtilityObject(*utility));
  const host::ObjectRegistration good(UtilityComponent::kProgId, host::kUtilityClassId,
                                      host::MakeUtilityObject(*utility));
  startAnew();
  Load(2);
  Call("AddMessageRem", {2, testing::ProfileData(2, "JO"), "<x>"});
  EXPECT_EQ(host.logged.size(), 1U);
  EXPECT_NE(lastBox().find("Error 438: "), std::string::npos) << lastBox();

  // The file-system object refuses: its own number and description arrive.
  host.logged.clear();
  Variant::Array data = *testing::ProfileData(2, "JO").AsArray();
  data[pdat::kSharedLog] = false;
  data[pdat::kProfileFolder] = "nowhere";
  Call("EnableRTRem", {2, data, "1"});
  ASSERT_EQ(host.logged.size(), 1U);
  EXPECT_EQ(host.logged[0].find("EnableRTRem: 76 "), 0U) << host.logged[0];
}

}  // namespace
}  // namespace rotacasts
