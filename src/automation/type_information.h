#pragma once

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

namespace voxa::automation {

/// What the type library says of one interface, as far as calls by name need it.
struct TypeInformation {
  struct Member {
    DISPID id;
    INVOKEKIND kind;
    /// Of each argument, the result apart: the type it has to have, VT_BYREF included; VT_EMPTY where the
    /// library's own conversion is left to work (variants, enumerations, objects).
    std::vector<VARTYPE> arguments;
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
