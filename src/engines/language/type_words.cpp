#include "engines/language/type_words.h"

#include <algorithm>
#include <iterator>

#include "engines/language/words.h"

namespace voxa::dialect {

namespace {

/// Integer has 32 bits in this language.
constexpr TypeWord words[] = {{"bit", DataType::Boolean},
                              {"boolean", DataType::Boolean},
                              {"logical", DataType::Boolean},
                              {"yesno", DataType::Boolean},
                              {"byte", DataType::Byte},
                              {"tinyint", DataType::Byte},
                              {"short", DataType::Integer},
                              {"smallint", DataType::Integer},
                              {"long", DataType::Long},
                              {"int", DataType::Long},
                              {"integer", DataType::Long},
                              {"counter", DataType::Long, true},
                              {"autoincrement", DataType::Long, true},
                              {"single", DataType::Single},
                              {"real", DataType::Single},
                              {"double", DataType::Double},
                              {"float", DataType::Double},
                              {"number", DataType::Double},
                              {"currency", DataType::Currency},
                              {"money", DataType::Currency},
                              {"datetime", DataType::Date},
                              {"date", DataType::Date},
                              {"time", DataType::Date},
                              {"text", DataType::Text},
                              {"char", DataType::Text},
                              {"character", DataType::Text},
                              {"varchar", DataType::Text},
                              {"string", DataType::Text},
                              {"memo", DataType::Memo},
                              {"longtext", DataType::Memo},
                              {"longchar", DataType::Memo},
                              {"note", DataType::Memo},
                              {"binary", DataType::Binary},
                              {"varbinary", DataType::Binary},
                              {"longbinary", DataType::LongBinary},
                              {"general", DataType::LongBinary},
                              {"image", DataType::LongBinary},
                              {"oleobject", DataType::LongBinary}};

}  // namespace

const TypeWord* typeOfWord(std::string_view word) {
  const auto* found = std::find_if(std::begin(words), std::end(words),
                                   [&](const TypeWord& known) { return isWord(word, known.word); });
  return found == std::end(words) ? nullptr : found;
}

}  // namespace voxa::dialect
