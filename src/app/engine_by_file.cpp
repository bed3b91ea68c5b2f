#include "app/engine_by_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/files.h"

namespace voxa {

namespace {

std::string headOf(std::string_view path) {
  const std::string native = files::native(path);
  std::ifstream file(std::filesystem::path(std::u8string(native.begin(), native.end())), std::ios::binary);
  std::string head(EngineByFile::headSize, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  return head;
}

}  // namespace

EngineByFile::EngineByFile(std::shared_ptr<DatabaseEngine> usual, std::vector<Further> further,
                           std::shared_ptr<DatabaseEngine> creating)
    : engines_{std::move(usual)}, further_(std::move(further)), creating_(std::move(creating)) {
  for (const Further& each : further_) engines_.push_back(each.engine);
}

std::shared_ptr<Database> EngineByFile::create(std::string_view path) {
  return creating_->create(path);
}

std::shared_ptr<Database> EngineByFile::open(std::string_view path, FileUse use) {
  try {
    return engines_.front()->open(path, use);
  } catch (const Error& error) {
    if (error.number() != err::dbNotADatabase) throw;
    const std::string head = headOf(path);
    for (const Further& each : further_) {
      if (each.serves(head)) return each.engine->open(path, use);
    }
    if (!isJetFile(head)) throw;
  }
  return own_.guarded([&]() -> std::shared_ptr<Database> {
    throw Error(
        err::dbNotADatabase,
        std::string(path) +
            " is a file of the Jet database engine, which is not installed for this program: 'voxa import "
            "mdb' takes over an installation, 'voxa db convert' makes another file one of this system");
  });
}

std::vector<std::shared_ptr<Database>> EngineByFile::databases() const {
  std::vector<std::shared_ptr<Database>> all;
  for (const auto& engine : engines_) {
    for (auto& database : engine->databases()) all.push_back(std::move(database));
  }
  return all;
}

void EngineByFile::begin() {
  own_.guarded([&] { requireNoTransaction(*this); });
  for (const auto& engine : engines_) engine->begin();
}

void EngineByFile::commit() {
  own_.guarded([&] { requireTransaction(*this); });
  try {
    for (const auto& engine : engines_) {
      if (engine->inTransaction()) engine->commit();
    }
  } catch (const Error&) {
    for (const auto& engine : engines_) {
      if (engine->inTransaction()) engine->rollback();
    }
    throw;
  }
}

void EngineByFile::rollback() {
  own_.guarded([&] { requireTransaction(*this); });
  for (const auto& engine : engines_) {
    if (engine->inTransaction()) engine->rollback();
  }
}

bool EngineByFile::inTransaction() const {
  return std::any_of(engines_.begin(), engines_.end(),
                     [](const auto& engine) { return engine->inTransaction(); });
}

const std::vector<ErrorInfo>& EngineByFile::errors() const {
  const auto& last = *std::max_element(engines_.begin(), engines_.end(), [](const auto& a, const auto& b) {
    return a->lastFailure() < b->lastFailure();
  });
  return last->lastFailure() < own_.lastFailure ? own_.errors : last->errors();
}

std::uint64_t EngineByFile::lastFailure() const {
  std::uint64_t last = own_.lastFailure;
  for (const auto& engine : engines_) last = std::max(last, engine->lastFailure());
  return last;
}

}  // namespace voxa
