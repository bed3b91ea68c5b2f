#include "type_information.h"

#include <wrl/client.h>

#include <cstring>
#include <map>

#include "module.h"
#include "platform/error.h"

namespace voxa::automation {

namespace {

using Microsoft::WRL::ComPtr;

struct Less {
  bool operator()(const GUID& a, const GUID& b) const { return std::memcmp(&a, &b, sizeof a) < 0; }
};

using Known = std::map<GUID, std::shared_ptr<const TypeInformation>, Less>;

Known& known() {
  static Known types;
  return types;
}

void require(HRESULT result) {
  if (FAILED(result)) {
    throw Error(err::internalError,
                "The type library in VOXA.dll cannot be read (" + std::to_string(result) + ")");
  }
}

VARTYPE typeOf(const TYPEDESC& type) {
  if (type.vt == VT_USERDEFINED) return VT_I4;
  if (type.vt != VT_PTR) return type.vt;
  switch (const VARTYPE inner = type.lptdesc->vt) {
    case VT_I2:
    case VT_I4:
    case VT_BOOL:
    case VT_BSTR:
    case VT_VARIANT:
      return static_cast<VARTYPE>(inner | VT_BYREF);
    default:
      return VT_DISPATCH;
  }
}

TypeInformation::Parameter parameterOf(const ELEMDESC& described) {
  const USHORT flags = described.paramdesc.wParamFlags;
  TypeInformation::Parameter out{
      typeOf(described.tdesc), (flags & (PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT)) != 0, {}};
  if ((out.type & ~VT_BYREF) == VT_VARIANT) {
    out.whenLeftOut->vt = VT_ERROR;
    out.whenLeftOut->scode = DISP_E_PARAMNOTFOUND;
  } else if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    require(::VariantCopy(&out.whenLeftOut, &described.paramdesc.pparamdescex->varDefaultValue));
  }
  return out;
}

bool isObject(const TYPEDESC& type) {
  // A result that is an object comes through a pointer to the object's pointer.
  return type.vt == VT_PTR && (type.lptdesc->vt == VT_PTR || type.lptdesc->vt == VT_DISPATCH);
}

TypeInformation::Member memberOf(const FUNCDESC& function) {
  TypeInformation::Member out{function.memid, function.invkind, {}, false};
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      out.returnsObject = isObject(parameter.tdesc);
    } else {
      out.parameters.push_back(parameterOf(parameter));
    }
  }
  return out;
}

/// A class's own interface is the first in its list.
bool isOwnInterface(ITypeInfo& type, REFIID interfaceId) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> first;
  TYPEATTR* attributes = nullptr;
  require(type.GetRefTypeOfImplType(0, &reference));
  require(type.GetRefTypeInfo(reference, &first));
  require(first->GetTypeAttr(&attributes));
  const bool same = attributes->guid == interfaceId;
  first->ReleaseTypeAttr(attributes);
  return same;
}

std::shared_ptr<const TypeInformation> load(REFIID interfaceId) {
  ITypeLib* library = nullptr;
  require(::LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, &library));
  auto out = std::make_shared<TypeInformation>();
  ITypeInfo* info = nullptr;
  const HRESULT found = library->GetTypeInfoOfGuid(interfaceId, &info);
  library->Release();
  require(found);
  // A dual interface is described twice. This is the vtable side, whose functions have their result as the
  // last argument.
  out->info = info;
  HREFTYPE vtableSide = 0;
  ITypeInfo* interface_ = nullptr;
  require(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &vtableSide));
  require(info->GetRefTypeInfo(vtableSide, &interface_));
  TYPEATTR* attributes = nullptr;
  require(interface_->GetTypeAttr(&attributes));
  const WORD functions = attributes->cFuncs;
  interface_->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < functions; ++i) {
    FUNCDESC* function = nullptr;
    require(interface_->GetFuncDesc(i, &function));
    out->members.push_back(memberOf(*function));
    interface_->ReleaseFuncDesc(function);
  }
  interface_->Release();
  return out;
}

}  // namespace

TypeInformation::~TypeInformation() {
  if (info != nullptr) info->Release();
}

const TypeInformation::Member* TypeInformation::find(DISPID id, WORD flags) const {
  for (const Member& member : members) {
    if (member.id == id && (member.kind & flags) != 0) return &member;
  }
  return nullptr;
}

std::shared_ptr<const TypeInformation> typeInformation(REFIID interfaceId) {
  std::shared_ptr<const TypeInformation>& entry = known()[interfaceId];
  if (!entry) entry = load(interfaceId);
  return entry;
}

ITypeInfo* classInformation(REFIID interfaceId) {
  ComPtr<ITypeLib> library;
  UINT ownIndex = 0;
  require(typeInformation(interfaceId)->info->GetContainingTypeLib(&library, &ownIndex));
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    TYPEKIND kind = TKIND_ALIAS;
    ComPtr<ITypeInfo> type;
    require(library->GetTypeInfoType(i, &kind));
    if (kind != TKIND_COCLASS) continue;
    require(library->GetTypeInfo(i, &type));
    if (isOwnInterface(*type.Get(), interfaceId)) return type.Detach();
  }
  throw Error(err::internalError, "The type library in VOXA.dll lacks a class");
}

void forgetTypeInformation() {
  known().clear();
}

std::string className(REFIID interfaceId) {
  const auto type = typeInformation(interfaceId);
  BSTR name = nullptr;
  require(type->info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr));
  std::string out = fromBstr(name);
  ::SysFreeString(name);
  // ITable keeps its name. For the others the I belongs to the interface, not to the class.
  return out == "ITable" ? out : out.substr(1);
}

}  // namespace voxa::automation
