#include "engines/dao/files.h"

#include <filesystem>

#include "platform/files.h"

namespace voxa::dao {

namespace {

constexpr const char* generalOrder = ";LANGID=0x0409;CP=1252;COUNTRY=0";
// Of the options of CreateDatabase. Without one the newest engines make files of another kind.
constexpr std::int32_t version3 = 32;
constexpr std::int32_t version4 = 64;

std::string fullPath(std::string_view path) {
  std::string native = files::native(path);
  const std::u8string utf8(native.begin(), native.end());
  if (!std::filesystem::path(utf8).is_absolute())
    native = files::native(files::currentFolder() + "\\" + native);
  return native;
}

}  // namespace

Error fileExists(std::string_view path) {
  return {err::dbFileExists, "The database exists already: " + std::string(path)};
}

std::shared_ptr<DaoDatabase> createFile(const std::shared_ptr<DaoSession>& session, std::string_view path) {
  const std::string full = fullPath(path);
  if (files::exists(full)) throw fileExists(path);
  const std::int32_t version = session->engine().text("Version").starts_with("3.5") ? version3 : version4;
  return std::make_shared<DaoDatabase>(
      session, full,
      session->workspace().object(Kind::database, "CreateDatabase", full, generalOrder, version));
}

std::shared_ptr<DaoDatabase> openFile(const std::shared_ptr<DaoSession>& session, std::string_view path,
                                      FileUse use) {
  const std::string full = fullPath(path);
  const auto opened = [&](bool readOnly) {
    return std::make_shared<DaoDatabase>(
        session, full,
        session->workspace().object(Kind::database, "OpenDatabase", full, false, readOnly, ""));
  };
  if (use == FileUse::reading) return opened(true);
  for (auto closed = session->closed.begin(); closed != session->closed.end(); ++closed) {
    if (closed->path != full) continue;
    auto again = std::make_shared<DaoDatabase>(session, full, closed->database);
    session->closed.erase(closed);
    return again;
  }
  try {
    return opened(false);
  } catch (const Error& error) {
    if (error.number() != err::dbCannotOpen) throw;
  }
  return opened(true);
}

}  // namespace voxa::dao
