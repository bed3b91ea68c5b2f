#pragma once

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

#include "conversion.h"

namespace voxa::automation {

/// What calls by name need to know of an interface, from the type library.
struct TypeInformation {
  struct Parameter {
    VARTYPE type;  ///< VT_BYREF included; VT_I4 of an enumeration, VT_DISPATCH of every kind of object
    bool isOptional;
    OwnVariant whenLeftOut;  ///< Empty, which can be converted to every type, when the library has no default
  };
  struct Member {
    DISPID id;
    INVOKEKIND kind;
    std::vector<Parameter> parameters;  ///< without the result
    bool returnsObject;
  };

  ~TypeInformation();
  [[nodiscard]] const Member* find(DISPID id, WORD flags) const;

  ITypeInfo* info = nullptr;
  std::vector<Member> members;
};

/// The description of an interface of this library. It is read from the type library in VOXA.dll at first use
/// and kept until the last object is gone. Raises `err::internalError` when it cannot be read.
[[nodiscard]] std::shared_ptr<const TypeInformation> typeInformation(REFIID interfaceId);
/// The description, with its reference counted, of the class that has this interface as its own. Raises
/// `err::internalError` when there is none.
[[nodiscard]] ITypeInfo* classInformation(REFIID interfaceId);
/// Forgets all descriptions. Called when the last object is gone, so that nothing is left to do when the
/// process ends.
void forgetTypeInformation();

/// The name of the class that has this interface: "Station" for IStation.
[[nodiscard]] std::string className(REFIID interfaceId);

}  // namespace voxa::automation
