// The members of _clsPlugin as a table: what each takes, and how it is called.
#pragma once

#include <span>
#include <vector>

#include "com/windows_api.h"
#include "component/plugin_interface.h"
#include "plugin/cls_plugin.h"

namespace rotacasts::win32 {

enum class ParameterKind { Number, Text, Any };

struct Parameter {
  const wchar_t* name;
  ParameterKind kind;
  bool optional = false;
};

/// One member. GetData, whose result is a record and not a value, has no call here.
struct MemberRow {
  DISPID id;
  const char* name;
  std::span<const Parameter> parameters;
  /// `arguments` has an element for each parameter, an omitted one missing.
  HostValue (*call)(clsPlugin& plugin, const std::vector<HostValue>& arguments);
};

std::span<const MemberRow> Members();
const MemberRow* FindMember(DISPID id);
/// Without regard to letter case.
const MemberRow* FindMember(const wchar_t* name);

/// The arguments of a call, one for each of the member's parameters, converted to its kind; an
/// omitted optional one is missing. Returns a failure code of the dispatch mechanism, and in
/// `badArgument` which argument it is about.
HRESULT CollectArguments(const MemberRow& member, const DISPPARAMS& parameters,
                         std::vector<HostValue>& arguments, UINT* badArgument);

}  // namespace rotacasts::win32
