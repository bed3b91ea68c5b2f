#pragma once

#include <oaidl.h>

#include "type_information.h"

namespace voxa::automation {

/// IDispatch::Invoke of an object whose members the type library describes. Beyond the type library's own
/// invocation:
/// - A by-reference argument may be a reference to a variant, as script hosts pass their variables: its value
///   is converted to the member's type before the call, and the result written back into the variant after
///   it.
/// - Arguments beyond those of a property that hands out an object go to that object's default member:
///   rows("Name") is rows.Fields.Item("Name"), and rows("Name") = x sets its Value.
[[nodiscard]] HRESULT invoke(IDispatch* object, const TypeInformation& type, DISPID member, WORD flags,
                             DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace voxa::automation
