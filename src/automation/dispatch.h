#pragma once

#include <oaidl.h>

#include "type_information.h"

namespace voxa::automation {

/// IDispatch::Invoke of an object whose members the type library describes. It does more than the type
/// library's own invocation:
/// - Before the member runs, all arguments are converted to the member's types, whether they come by position
///   or by name, and those left out are filled in. A variable that is passed by reference may have any
///   automation type, or be a variant, as script hosts pass theirs. It gets the result when the member has
///   run. One that cannot hold a result is refused before.
/// - A property that hands out an object passes arguments that it does not take to the object's default
///   member: rows("Name") is rows.Fields.Item("Name"), and rows("Name") = x sets its Value.
[[nodiscard]] HRESULT invoke(IDispatch* object, const TypeInformation& type, DISPID member, WORD flags,
                             DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace voxa::automation
