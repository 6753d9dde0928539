#include "component/member_table.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/conversions.h"
#include "base/text.h"
#include "com/com_support.h"
#include "com/variant_conversion.h"
#include "plugin/remote_operations.h"

namespace rotacasts::win32 {
namespace {

using Arguments = std::vector<HostValue>;
using enum ParameterKind;

constexpr Parameter kOfLoad[] = {
    {L"Index", Number}, {L"PHWND", Number}, {L"PDAT", Any}, {L"fName", Text, true}};
constexpr Parameter kOfHide[] = {{L"fName", Text, true}};
constexpr Parameter kOfUnload[] = {{L"fName", Text}};
constexpr Parameter kOfDisable[] = {{L"Index", Number}};
constexpr Parameter kOfRemote[] = {{L"Index", Number}, {L"PDAT", Any}, {L"Data", Any, true}};

/// The text; empty if it was omitted.
std::string TextOr(const HostValue& argument) {
  return argument == HostValue(HostValue::Missing{}) ? std::string() : ToText(argument);
}

template <std::size_t Operation>
HostValue CallRemote(clsPlugin& plugin, const Arguments& arguments) {
  return (plugin.*kRemoteOperations[Operation].call)(ToLong(arguments[0]), arguments[1],
                                                     arguments[2]);
}

constexpr MemberRow kOwnMembers[] = {
    {kGetData, "GetData", {}, nullptr},
    {kGetPrivis,
     "GetPrivis",
     {},
     [](clsPlugin& plugin, const Arguments&) { return plugin.GetPrivis(); }},
    {kLoadInterface, "LoadInterface", kOfLoad,
     [](clsPlugin& plugin, const Arguments& arguments) {
       plugin.LoadInterface(ToLong(arguments[0]), ToLong(arguments[1]), arguments[2],
                            TextOr(arguments[3]));
       return HostValue();
     }},
    {kUnLoadInterface, "UnLoadInterface", kOfUnload,
     [](clsPlugin& plugin, const Arguments& arguments) {
       plugin.UnLoadInterface(TextOr(arguments[0]));
       return HostValue();
     }},
    {kDisableProfile, "DisableProfile", kOfDisable,
     [](clsPlugin& plugin, const Arguments& arguments) {
       plugin.DisableProfile(ToLong(arguments[0]));
       return HostValue();
     }},
    {kHideInterface, "HideInterface", kOfHide,
     [](clsPlugin& plugin, const Arguments& arguments) {
       plugin.HideInterface(TextOr(arguments[0]));
       return HostValue();
     }},
};

/// The members above, then the remote operations.
template <std::size_t... Own, std::size_t... Remote>
constexpr auto AllMembers(std::index_sequence<Own...>, std::index_sequence<Remote...>) {
  return std::array<MemberRow, sizeof...(Own) + sizeof...(Remote)>{
      kOwnMembers[Own]..., MemberRow{kRemoteOperations[Remote].id, kRemoteOperations[Remote].name,
                                     kOfRemote, CallRemote<Remote>}...};
}
constexpr auto kMembers = AllMembers(std::make_index_sequence<std::size(kOwnMembers)>(),
                                     std::make_index_sequence<std::size(kRemoteOperations)>());

/// Finds the index of each parameter's argument in `call`, -1 if it is omitted. The named arguments
/// come first, then the others from last to first.
HRESULT Locate(const MemberRow& member, const DISPPARAMS& call, std::vector<int>& places) {
  const std::size_t count = member.parameters.size();
  places.assign(count, -1);
  if (call.cNamedArgs > call.cArgs || call.cArgs > count) return DISP_E_BADPARAMCOUNT;
  for (UINT i = 0; i < call.cNamedArgs; ++i) {
    const DISPID parameter = call.rgdispidNamedArgs[i];
    if (parameter < 0 || static_cast<std::size_t>(parameter) >= count) return DISP_E_PARAMNOTFOUND;
    places[static_cast<std::size_t>(parameter)] = static_cast<int>(i);
  }
  const UINT positional = call.cArgs - call.cNamedArgs;
  for (UINT i = 0; i < positional; ++i) places[i] = static_cast<int>(call.cArgs - 1 - i);
  return S_OK;
}

HostValue Converted(const HostValue& value, ParameterKind kind) {
  switch (kind) {
    case Number:
      return ToLong(value);
    case Text:
      return ToText(value);
    default:
      return value;
  }
}

}  // namespace

std::span<const MemberRow> Members() {
  return kMembers;
}

const MemberRow* FindMember(DISPID id) {
  const auto found = std::find_if(std::begin(kMembers), std::end(kMembers),
                                  [id](const MemberRow& row) { return row.id == id; });
  return found != std::end(kMembers) ? &*found : nullptr;
}

const MemberRow* FindMember(const wchar_t* name) {
  const std::string wanted = FromWide(name);
  const auto found = std::find_if(kMembers.begin(), kMembers.end(), [&](const MemberRow& row) {
    return EqualsIgnoringCase(row.name, wanted);
  });
  return found != kMembers.end() ? &*found : nullptr;
}

HRESULT CollectArguments(const MemberRow& member, const DISPPARAMS& parameters,
                         Arguments& arguments, UINT* badArgument) {
  std::vector<int> places;
  const HRESULT located = Locate(member, parameters, places);
  if (FAILED(located)) return located;
  arguments.assign(places.size(), HostValue(HostValue::Missing{}));
  for (std::size_t i = 0; i < places.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    HostValue value = HostValue::Missing{};
    if (places[i] >= 0) value = ToHostValue(parameters.rgvarg[places[i]]);
    if (value == HostValue(HostValue::Missing{})) {
      if (!parameter.optional) return DISP_E_PARAMNOTOPTIONAL;
      continue;
    }
    try {
      arguments[i] = Converted(value, parameter.kind);
    } catch (const RuntimeError& error) {
      if (badArgument != nullptr) *badArgument = static_cast<UINT>(places[i]);
      return error.Is(ErrorNumber::Overflow) ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
    }
  }
  return S_OK;
}

}  // namespace rotacasts::win32
