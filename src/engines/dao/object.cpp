#include "engines/dao/object.h"

#include <windows.h>

#include <array>

#include "engines/dao/failures.h"
#include "engines/dao/session.h"
#include "platform/error.h"

namespace voxa::dao {

namespace {

constexpr std::array<const char*, 21> kindNames = {
    "DBEngine",  "Errors",    "Error",     "Workspaces", "Workspace",  "Database",  "Properties",
    "Property",  "TableDefs", "TableDef",  "Fields",     "Field",      "Indexes",   "Index",
    "Relations", "Relation",  "QueryDefs", "QueryDef",   "Parameters", "Parameter", "Recordset"};

const char* typeName(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_BSTR:
      return "text";
    case VT_I2:
    case VT_I4:
      return "number";
    case VT_BOOL:
      return "flag";
    case VT_DISPATCH:
      return "object";
    case VT_ERROR:
      return "-";
    default:
      return "value";
  }
}

OwnVariant made(const VARIANT& variant) {
  return OwnVariant(variant);
}

}  // namespace

const char* nameOf(Kind kind) {
  return kindNames[static_cast<std::size_t>(kind)];
}

bool processEnds() {
  using Asked = BOOLEAN(WINAPI*)();
  static const auto asked = reinterpret_cast<Asked>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
  return asked != nullptr && asked() != FALSE;
}

OwnVariant argument(const std::string& text) {
  return made(toVariant(Value(text)));
}
OwnVariant argument(const char* text) {
  return argument(std::string(text));
}
OwnVariant argument(std::int32_t number) {
  return made(toVariant(Value(number)));
}
OwnVariant argument(bool flag) {
  return made(toVariant(Value(flag)));
}
OwnVariant argument(const Value& value) {
  return made(toVariant(value));
}
OwnVariant argument(const ColumnValue& value) {
  return made(toVariant(value));
}
OwnVariant argument(const Object& object) {
  OwnVariant out;
  out->vt = VT_DISPATCH;
  out->pdispVal = object.dispatch();
  out->pdispVal->AddRef();
  return out;
}
OwnVariant argument(LeftOut) {
  OwnVariant out;
  out->vt = VT_ERROR;
  out->scode = DISP_E_PARAMNOTFOUND;
  return out;
}

Object::Object(DaoSession& session, Kind kind, IDispatch* object)
    : session_(&session), object_(object), kind_(kind) {
  if (object_ != nullptr) object_->AddRef();
}

Object::Object(const Object& other) : session_(other.session_), object_(other.object_), kind_(other.kind_) {
  if (object_ != nullptr) object_->AddRef();
}

Object::~Object() {
  if (object_ != nullptr && !processEnds()) object_->Release();
}

OwnVariant Object::invoke(const char* member, bool isPut, Arguments arguments) const {
  if (object_ == nullptr) throw Error(err::dbInvalidObject, "The object is closed");
  const DISPID id = session_->idOf(kind_, member, *object_);
  std::vector<VARIANT> given;  // the last argument stands first
  for (auto at = arguments.rbegin(); at != arguments.rend(); ++at) given.push_back(**at);
  DISPID value = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{given.data(), isPut ? &value : nullptr, static_cast<UINT>(given.size()),
                        isPut ? 1U : 0U};
  OwnVariant result;
  Failure failure;
  const WORD how = isPut ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  failure.result = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, how, &parameters,
                                   isPut ? nullptr : &result, &failure.info, nullptr);
  const int error = FAILED(failure.result) ? failure.number() : 0;
  if (session_->options.observer) {
    DaoCall call{nameOf(kind_), member, isPut, {}, error};
    for (const OwnVariant& each : arguments) call.arguments.emplace_back(typeName(*each));
    session_->options.observer(call);
  }
  if (FAILED(failure.result)) failure.raise(*session_, std::string(nameOf(kind_)) + "." + member);
  return result;
}

Object Object::fromResult(Kind kind, const OwnVariant& result) const {
  if (result.operator*().vt != VT_DISPATCH || result.operator*().pdispVal == nullptr)
    throw Error(err::internalError, std::string("The data objects give no ") + nameOf(kind));
  return {*session_, kind, result.operator*().pdispVal};
}

Kind Object::itemKind() const {
  return static_cast<Kind>(static_cast<int>(kind_) + 1);  // each collection stands before its items
}

std::string Object::text(const char* member) const {
  return value(member).toText();
}

std::int32_t Object::number(const char* member) const {
  return value(member).toInt32();
}

bool Object::flag(const char* member) const {
  return value(member).toBool();
}

Value Object::value(const char* member) const {
  return valueOf(*call(member));
}

Value valueOf(const VARIANT& variant) {
  if (variant.vt == VT_R4) return toSingle(static_cast<double>(variant.fltVal));
  return fromVariant(variant);
}

}  // namespace voxa::dao
