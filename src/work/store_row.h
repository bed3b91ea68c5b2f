#pragma once

#include <string>

namespace voxa {
class Recordset;
}

namespace voxa {

class Installation;

/// Saves a row that is being edited or added. A value that another row has already, where each row needs its
/// own, is a Refusal that names the fields and that row: "the name is already in use: reader 4 (Side) has
/// it". table: of the row. noun: what a row of it is called ("reader").
void storeRow(Installation& installation, Recordset& row, const std::string& table, const std::string& noun);

}  // namespace voxa
