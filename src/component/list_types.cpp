// Lists what a type library declares, so that two can be compared: identifiers, the layout of
// records, the order of an interface's functions and the types of their arguments.
// Usage: list-types FILE (a .tlb, or a DLL that carries one)

#include <algorithm>
#include <cstdio>
#include <vector>

#include "com/com_support.h"

namespace rotacasts::win32 {
namespace {

/// Thrown with the result of a failed call.
struct Refused {
  HRESULT result;
};

void Check(HRESULT result) {
  if (FAILED(result)) throw Refused{result};
}

std::string Text(const GUID& id) {
  wchar_t text[40];
  return FromWide({text, static_cast<std::size_t>(::StringFromGUID2(id, text, 40)) - 1});
}

std::string NameOf(ITypeInfo& info) {
  Bstr name;
  Check(info.GetDocumentation(MEMBERID_NIL, name.Address(), nullptr, nullptr, nullptr));
  return FromBstr(name.Get());
}

/// Attributes of a type that the system lends; returned at the end of the scope.
template <class Attributes, auto Get, auto Release>
class Lent {
 public:
  template <class... Index>
  explicit Lent(ITypeInfo& info, Index... index) : info_(info) {
    Check((info_.*Get)(index..., &attributes_));
  }
  ~Lent() { (info_.*Release)(attributes_); }
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  const Attributes* operator->() const { return attributes_; }

 private:
  ITypeInfo& info_;
  Attributes* attributes_ = nullptr;
};
using Type = Lent<TYPEATTR, &ITypeInfo::GetTypeAttr, &ITypeInfo::ReleaseTypeAttr>;
using Field = Lent<VARDESC, &ITypeInfo::GetVarDesc, &ITypeInfo::ReleaseVarDesc>;
using Function = Lent<FUNCDESC, &ITypeInfo::GetFuncDesc, &ITypeInfo::ReleaseFuncDesc>;

struct KindRow {
  VARTYPE kind;
  const char* name;
};
constexpr KindRow kKinds[] = {
    {VT_I2, "short"},           {VT_I4, "long"},       {VT_R4, "float"},
    {VT_R8, "double"},          {VT_CY, "CURRENCY"},   {VT_DATE, "DATE"},
    {VT_BSTR, "BSTR"},          {VT_ERROR, "SCODE"},   {VT_BOOL, "VARIANT_BOOL"},
    {VT_VARIANT, "VARIANT"},    {VT_UI1, "byte"},      {VT_DISPATCH, "IDispatch*"},
    {VT_UNKNOWN, "IUnknown*"},  {VT_INT, "int"},       {VT_UINT, "unsigned int"},
    {VT_UI4, "unsigned long"},  {VT_VOID, "void"},     {VT_HRESULT, "HRESULT"},
    {VT_UI2, "unsigned short"}, {VT_LPWSTR, "LPWSTR"},
};

std::string Text(ITypeInfo& info, const TYPEDESC& type) {
  if (type.vt == VT_PTR) return Text(info, *type.lptdesc) + "*";
  if (type.vt == VT_SAFEARRAY) return "SAFEARRAY(" + Text(info, *type.lptdesc) + ")";
  if (type.vt == VT_USERDEFINED) {
    ComPtr<ITypeInfo> other;
    Check(info.GetRefTypeInfo(type.hreftype, other.Receive()));
    return NameOf(*other.Get());
  }
  const auto row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                [&](const KindRow& other) { return other.kind == type.vt; });
  return row != std::end(kKinds) ? row->name : "type " + std::to_string(type.vt);
}

struct FlagRow {
  USHORT flag;
  const char* name;
};
constexpr FlagRow kFlags[] = {{PARAMFLAG_FIN, "in "},
                              {PARAMFLAG_FOUT, "out "},
                              {PARAMFLAG_FOPT, "optional "},
                              {PARAMFLAG_FHASDEFAULT, "default "},
                              {PARAMFLAG_FRETVAL, "retval "}};

void PrintFields(ITypeInfo& info, WORD count) {
  for (UINT i = 0; i < count; ++i) {
    const Field field(info, i);
    Bstr name;
    Check(info.GetDocumentation(field->memid, name.Address(), nullptr, nullptr, nullptr));
    std::printf("  at %3lu  %s %s\n", field->oInst, Text(info, field->elemdescVar.tdesc).c_str(),
                FromBstr(name.Get()).c_str());
  }
}

void PrintFunctions(ITypeInfo& info, WORD count) {
  for (UINT i = 0; i < count; ++i) {
    const Function function(info, i);
    std::vector<BSTR> names(static_cast<std::size_t>(function->cParams) + 1);
    UINT found = 0;
    Check(info.GetNames(function->memid, names.data(), static_cast<UINT>(names.size()), &found));
    std::printf("  at %3d  id 0x%08lX  %s %s(", function->oVft,
                static_cast<unsigned long>(function->memid),
                Text(info, function->elemdescFunc.tdesc).c_str(), FromBstr(names[0]).c_str());
    for (SHORT p = 0; p < function->cParams; ++p) {
      const ELEMDESC& parameter = function->lprgelemdescParam[p];
      std::string text;
      for (const FlagRow& row : kFlags) {
        if ((parameter.paramdesc.wParamFlags & row.flag) != 0) text += row.name;
      }
      text += Text(info, parameter.tdesc) + " " + FromBstr(names[static_cast<std::size_t>(p) + 1]);
      std::printf("%s%s", p > 0 ? ", " : "", text.c_str());
    }
    std::printf(")\n");
    for (const BSTR name : names) ::SysFreeString(name);
  }
}

/// The function table of a dual interface, the half next to its dispatch half.
ComPtr<ITypeInfo> TableOf(ITypeInfo& dual) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> table;
  Check(dual.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  Check(dual.GetRefTypeInfo(reference, table.Receive()));
  return table;
}

void PrintClass(ITypeInfo& info, WORD count) {
  for (UINT i = 0; i < count; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ComPtr<ITypeInfo> implemented;
    Check(info.GetRefTypeOfImplType(i, &reference));
    Check(info.GetImplTypeFlags(i, &flags));
    Check(info.GetRefTypeInfo(reference, implemented.Receive()));
    std::printf("  %s%s%s\n", (flags & IMPLTYPEFLAG_FDEFAULT) != 0 ? "default " : "",
                (flags & IMPLTYPEFLAG_FSOURCE) != 0 ? "source " : "",
                NameOf(*implemented.Get()).c_str());
  }
}

void PrintType(ITypeInfo& info) {
  constexpr const char* kWords[] = {"enumeration",        "record", "module", "interface",
                                    "dispatch interface", "class",  "alias",  "union"};
  const Type type(info);
  // Some compilers copy the standard interfaces into a library, others refer to them.
  if (IsEqualGUID(type->guid, IID_IUnknown) || IsEqualGUID(type->guid, IID_IDispatch)) return;
  std::printf("\n%s %s %s", kWords[std::min<unsigned>(type->typekind, 7)], NameOf(info).c_str(),
              Text(type->guid).c_str());
  switch (type->typekind) {
    case TKIND_RECORD:
      std::printf(" of %lu bytes, aligned to %u\n", type->cbSizeInstance, type->cbAlignment);
      return PrintFields(info, type->cVars);
    case TKIND_INTERFACE:
    case TKIND_DISPATCH:
      if ((type->wTypeFlags & TYPEFLAG_FDUAL) != 0 && type->typekind == TKIND_DISPATCH) {
        std::printf(" (dual)\n");
        const ComPtr<ITypeInfo> table = TableOf(info);
        return PrintFunctions(*table.Get(), Type(*table.Get())->cFuncs);
      }
      std::printf("\n");
      return PrintFunctions(info, type->cFuncs);
    case TKIND_COCLASS:
      std::printf("\n");
      return PrintClass(info, type->cImplTypes);
    case TKIND_ALIAS:
      std::printf(" is %s\n", Text(info, type->tdescAlias).c_str());
      return;
    default:
      std::printf("\n");
      return PrintFields(info, type->cVars);
  }
}

void PrintLibrary(const wchar_t* file) {
  ComPtr<ITypeLib> library;
  Check(::LoadTypeLibEx(file, REGKIND_NONE, library.Receive()));
  TLIBATTR* lent = nullptr;
  Check(library->GetLibAttr(&lent));
  const TLIBATTR attributes = *lent;
  library->ReleaseTLibAttr(lent);
  Bstr name;
  Check(library->GetDocumentation(-1, name.Address(), nullptr, nullptr, nullptr));
  std::printf("library %s %s %u.%u\n", FromBstr(name.Get()).c_str(), Text(attributes.guid).c_str(),
              attributes.wMajorVerNum, attributes.wMinorVerNum);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    Check(library->GetTypeInfo(i, info.Receive()));
    PrintType(*info.Get());
  }
}

}  // namespace
}  // namespace rotacasts::win32

extern "C" int wmain(int count, wchar_t** arguments) {
  using namespace rotacasts::win32;
  if (count != 2) {
    std::fputs("usage: list-types FILE (a .tlb, or a DLL that carries one)\n", stderr);
    return 2;
  }
  try {
    PrintLibrary(arguments[1]);
    return 0;
  } catch (const Refused& refused) {
    std::fprintf(stderr, "%s\n", DescribeResult(refused.result).c_str());
    return 1;
  }
}
