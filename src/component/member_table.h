// The members of _clsPlugin as a table: which parameters each has and how it is called.
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

/// One member. GetData has no `call` because its result is a record, not a value.
struct MemberRow {
  DISPID id;
  const char* name;
  std::span<const Parameter> parameters;
  /// `arguments` has one element per parameter; an omitted one is Missing.
  HostValue (*call)(clsPlugin& plugin, const std::vector<HostValue>& arguments);
};

std::span<const MemberRow> Members();
const MemberRow* FindMember(DISPID id);
/// Ignores letter case.
const MemberRow* FindMember(const wchar_t* name);

/// Collects the arguments of a call, one per parameter and converted to its kind; an omitted
/// optional one is Missing. Returns a failure code of IDispatch if one is wrong, and its index in
/// `badArgument` (may be null) if it cannot be converted.
HRESULT CollectArguments(const MemberRow& member, const DISPPARAMS& parameters,
                         std::vector<HostValue>& arguments, UINT* badArgument);

}  // namespace rotacasts::win32
