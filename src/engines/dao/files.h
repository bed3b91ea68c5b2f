#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engines/dao/dao_database.h"

namespace voxa::dao {

/// Creates a database file with the general order of texts, of the newest version that files named .mdb have.
[[nodiscard]] std::shared_ptr<DaoDatabase> createFile(const std::shared_ptr<DaoSession>& session,
                                                      std::string_view path);
/// Opens one, for reading only when it allows no more.
[[nodiscard]] std::shared_ptr<DaoDatabase> openFile(const std::shared_ptr<DaoSession>& session,
                                                    std::string_view path, FileUse use);
/// 3204
[[nodiscard]] Error fileExists(std::string_view path);

}  // namespace voxa::dao
