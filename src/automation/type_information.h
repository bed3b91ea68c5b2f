#pragma once

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

#include "conversion.h"

namespace voxa::automation {

/// What the type library says of one interface, as far as calls by name need it.
struct TypeInformation {
  struct Parameter {
    VARTYPE type;  ///< VT_BYREF included; VT_I4 of an enumeration, VT_DISPATCH of every kind of object
    bool isOptional;
    OwnVariant whenLeftOut;  ///< Empty, which every type has a value for, when the library tells none
  };
  struct Member {
    DISPID id;
    INVOKEKIND kind;
    std::vector<Parameter> parameters;  ///< the result apart
    bool returnsObject;
  };

  ~TypeInformation();
  [[nodiscard]] const Member* find(DISPID id, WORD flags) const;

  ITypeInfo* info = nullptr;
  std::vector<Member> members;
};

/// Of an interface of this library; read from the type library in it at first use and kept until the last
/// object is gone. Raises `err::internalError` when it cannot be read.
[[nodiscard]] std::shared_ptr<const TypeInformation> typeInformation(REFIID interfaceId);
/// Forgets what was read: called when the last object is gone, since nothing may be left to do when the
/// process ends.
void forgetTypeInformation();

/// The name of the class that has this interface: "Station" for IStation.
[[nodiscard]] std::string className(REFIID interfaceId);

}  // namespace voxa::automation
