#pragma once

#include <unknwn.h>

#include <span>

namespace voxa::automation {

/// A class that callers create by name: "KORVA." and its name.
struct CreatableClass {
  const CLSID* id;
  const wchar_t* name;
  IUnknown* (*make)();  ///< without a counted reference
};

[[nodiscard]] std::span<const CreatableClass> creatableClasses();

/// The object by which the system creates objects of that class, with its reference counted.
[[nodiscard]] IClassFactory* newClassFactory(const CreatableClass& made);

}  // namespace voxa::automation
