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

TEST_F(ComponentTest, TheTypeLibraryDeclaresTheMembersUnderTheirIdentifiers) {
  const std::map<std::string, DISPID> members = {
      {"GetData", 0x60030003},           {"GetPrivis", 0x60030004},
      {"LoadInterface", 0x60030005},     {"UnLoadInterface", 0x60030006},
      {"DisableProfile", 0x60030007},    {"GetMessagesRem", 0x60030009},
      {"AddMessageRem", 0x6003000A},     {"EnableRTRem", 0x6003000B},
      {"ChangeIntervalRem", 0x6003000C}, {"MoveMessageDownRem", 0x6003000D},
      {"MoveMessageUpRem", 0x6003000E},  {"DeleteMessageRem", 0x6003000F},
      {"HideInterface", 0x60030010}};
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(plugin->Get()->GetTypeInfo(0, 0, info.Receive()), S_OK);
  for (const auto& [name, id] : members) {
    std::wstring wide = win32::ToWide(name);
    LPOLESTR asked = wide.data();
    MEMBERID found = DISPID_UNKNOWN;
    EXPECT_EQ(info->GetIDsOfNames(&asked, 1, &found), S_OK) << name;
    EXPECT_EQ(found, id) << name;
    for (wchar_t& letter : wide) letter = static_cast<wchar_t>(::towupper(letter));
    EXPECT_EQ(plugin->Identify(win32::FromWide(wide).c_str()), id) << name;
  }
  EXPECT_EQ(ErrorOf([&] { plugin->Identify("GetDat"); }), 438);
}

TEST_F(ComponentTest, TheDescriptorIsTheSameRecordThroughBothInterfaces) {
  const ComVariant result = plugin->Invoke(0x60030003, nullptr, 0);
  ASSERT_EQ(result.Get().vt, VT_RECORD);
  const auto* record = static_cast<const PluginRecord*>(result.Get().pvRecord);
  EXPECT_STREQ(record->Name, L"Rotacasts");
  EXPECT_STREQ(record->File, L"tvxRT.dll");
  EXPECT_STREQ(record->Version, L"1.0.0");  // from the version resource
  EXPECT_STREQ(record->MinTVXVer, L"31103");
  EXPECT_EQ(record->HasPrivis, VARIANT_TRUE);
  EXPECT_EQ(record->MainMenu, VARIANT_FALSE);
  EXPECT_EQ(record->ProfileMenuItems.vt, VT_EMPTY);
  EXPECT_EQ(record->Game.vt, VT_ARRAY | VT_BSTR);
  EXPECT_EQ(ToText(win32::FromVariant(record->Game).At(0)), "Delta Force,  V1.5.0.5");

  PluginRecord second{};
  ASSERT_EQ(DualOf(*plugin)->GetData(&second), S_OK);
  EXPECT_STREQ(second.Description, record->Description);
  EXPECT_NE(second.Game.parray, record->Game.parray) << "each call's arrays are its own";
  result.Get().pRecInfo->RecordClear(&second);
  EXPECT_EQ(ToText(Call("GetPrivis", {}).At(1)), "Add/Remove Rotacasts|1");
}

// A host that declares the record for itself, in a language that aligns fields to the width of a
// pointer: where each lies then, in bytes, for 32 and for 64 bits.
TEST_F(ComponentTest, ARecordThatTheHostDeclaredItselfIsFilledAndNothingBehindIt) {
  struct Row {
    const wchar_t* field;
    std::size_t offsets[2];
  };
  constexpr Row kFields[] = {{L"Name", {0, 0}},
                             {L"Game", {20, 40}},
                             {L"HasInterface", {36, 64}},
                             {L"MainMenu", {42, 70}},
                             {L"ServerMenuItems", {60, 96}},
                             {L"HasPrivis", {92, 144}},
                             {L"HelpFile", {96, 152}},
                             {L"MinTVXVer", {112, 184}}};
  constexpr std::size_t kSizes[] = {116, 192};
  constexpr std::size_t width = sizeof(void*) == 4 ? 0 : 1;
  constexpr unsigned char kGuard = 0xA5;
  alignas(8) unsigned char block[256] = {};
  std::fill(block + kSizes[width], std::end(block), kGuard);
  ASSERT_EQ(DualOf(*plugin)->GetData(reinterpret_cast<PluginRecord*>(block)), S_OK);
  EXPECT_EQ(std::count(block + kSizes[width], std::end(block), kGuard),
            static_cast<std::ptrdiff_t>(sizeof block - kSizes[width]));
  const auto at = [&](std::size_t row) { return block + kFields[row].offsets[width]; };
  EXPECT_STREQ(*reinterpret_cast<BSTR*>(at(0)), L"Rotacasts");
  EXPECT_EQ(*reinterpret_cast<VARTYPE*>(at(1)), VT_ARRAY | VT_BSTR);
  EXPECT_EQ(*reinterpret_cast<VARIANT_BOOL*>(at(2)), VARIANT_TRUE);
  EXPECT_EQ(*reinterpret_cast<VARIANT_BOOL*>(at(3)), VARIANT_FALSE);
  EXPECT_EQ(*reinterpret_cast<VARTYPE*>(at(4)), VT_ARRAY | VT_BSTR);
  EXPECT_EQ(*reinterpret_cast<VARIANT_BOOL*>(at(5)), VARIANT_TRUE);
  EXPECT_STREQ(*reinterpret_cast<BSTR*>(at(6)), L"tvxRT_help.chm");
  EXPECT_STREQ(*reinterpret_cast<BSTR*>(at(7)), L"31103");

  // And so does the library say.
  const ComVariant result = plugin->Invoke(0x60030003, nullptr, 0);
  IRecordInfo& library = *result.Get().pRecInfo;
  ULONG size = 0;
  EXPECT_EQ(library.GetSize(&size), S_OK);
  EXPECT_EQ(size, kSizes[width]);
  for (const Row& row : kFields) {
    VARIANT value;
    ::VariantInit(&value);
    void* inside = nullptr;
    ASSERT_EQ(library.GetFieldNoCopy(result.Get().pvRecord, row.field, &value, &inside), S_OK);
    EXPECT_EQ(
        static_cast<const char*>(value.byref) - static_cast<const char*>(result.Get().pvRecord),
        static_cast<std::ptrdiff_t>(row.offsets[width]))
        << win32::FromWide(row.field);
  }
  library.RecordClear(block);
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

/// What both kinds of plugin are put through; `call` calls a member, `load` loads profile 2.
template <class Load, class Call>
void LiveALittle(testing::FakeHost& host, Load load, Call call) {
  const Variant data = testing::ProfileData(2, "JO");
  load();
  call("GetMessagesRem", data, Variant(Variant::Missing{}));
  call("AddMessageRem", data,
       Variant("<Gr\xC3\xBC\xC3\x9F"
               "e>"));
  call("MoveMessageUpRem", data, Variant(std::int32_t{2}));
  call("ChangeIntervalRem", data, Variant(std::int16_t{5}));
  call("EnableRTRem", data, Variant("0"));
  call("DeleteMessageRem", data, Variant(0.6));
  host.failAtCall = 2;
  call("AddMessageRem", data, Variant("<x>"));
}

TEST_F(ComponentTest, TheComponentsAreCalledAsTheCoreCallsThemArgumentForArgument) {
  const std::string before = MessageFileBytes({"a", "{ShowNextMap}"});
  testing::PluginHarness native;
  for (testing::FakeHost* each : {&host, &native.host}) {
    each->MessageFile(2) = before;
    each->writesBack = true;
    each->folders.insert("C:\\Host");
  }
  LiveALittle(
      host, [&] { Load(2); },
      [&](const char* member, const Variant& data, const Variant& argument) {
        Call(member, {2, data, argument});
      });
  using Operation = std::string (clsPlugin::*)(std::int32_t, const Variant&, const Variant&);
  const std::map<std::string, Operation> operations = {
      {"GetMessagesRem", &clsPlugin::GetMessagesRem},
      {"AddMessageRem", &clsPlugin::AddMessageRem},
      {"EnableRTRem", &clsPlugin::EnableRTRem},
      {"ChangeIntervalRem", &clsPlugin::ChangeIntervalRem},
      {"MoveMessageUpRem", &clsPlugin::MoveMessageUpRem},
      {"DeleteMessageRem", &clsPlugin::DeleteMessageRem}};
  LiveALittle(
      native.host, [&] { native.Load(2); },
      [&](const char* member, const Variant& data, const Variant& argument) {
        (native.Plugin().*operations.at(member))(2, data, argument);
      });
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
  EXPECT_NE(lastBox().find("Main"), std::string::npos) << lastBox();

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
