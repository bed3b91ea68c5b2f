#pragma once

#include <oaidl.h>

#include "platform/database/recordset.h"

namespace voxa::automation {

// The Type and options arguments of OpenRecordset and Execute, which may be left out. Options that ask for
// what is so anyway are accepted. Those that ask for what is not done here, and unknown ones, are 3001:
// nobody is to believe that he has a file for himself.

[[nodiscard]] RowOptions rowOptions(const VARIANT& type, const VARIANT& options);
void checkExecuteOptions(const VARIANT& options);

}  // namespace voxa::automation
