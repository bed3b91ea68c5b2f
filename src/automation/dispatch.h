#pragma once

#include <oaidl.h>

#include "type_information.h"

namespace voxa::automation {

/// IDispatch::Invoke of an object whose members the type library describes. Beyond the type library's own
/// invocation:
/// - All arguments are converted to the member's types, whether they come by position or by name, and those
///   left out filled in, before the member runs. A variable passed by reference may have any automation type,
///   or be a variant, as script hosts pass theirs; it gets the result when the member has run. One that could
///   hold no result is refused before.
/// - Arguments beyond those of a property that hands out an object go to that object's default member:
///   rows("Name") is rows.Fields.Item("Name"), and rows("Name") = x sets its Value.
[[nodiscard]] HRESULT invoke(IDispatch* object, const TypeInformation& type, DISPID member, WORD flags,
                             DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace voxa::automation
