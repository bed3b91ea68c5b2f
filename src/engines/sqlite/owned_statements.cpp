// Statements that are their owner's alone: commands, and tests of rows.

#include "engines/sqlite/errors.h"
#include "engines/sqlite/statement_inputs.h"

namespace voxa {

namespace {

/// A statement whose text is read once and holds for as long as the database is open.
class SqliteCommand final : public Command {
 public:
  SqliteCommand(std::shared_ptr<SqliteDatabase> database, std::string_view sql)
      : database_(std::move(database)), sql_(sql), change_(database_->translateChange(sql_)) {}

  int execute(const std::vector<Value>& values) override { return database_->run(change_, sql_, values); }

 private:
  std::shared_ptr<SqliteDatabase> database_;
  std::string sql_;
  SqliteDatabase::Owned change_;
};

}  // namespace

SqliteDatabase::Owned SqliteDatabase::translateChange(std::string_view sql) {
  Prepared made = translate(sql);
  dialect::scan(sql, scanned_, &session_->clock);
  Owned change{std::move(made), scanned_.literals, {}};
  const dialect::Translation& translation = *change.prepared.translation;
  requireKind(translation, false);
  using Kind = dialect::Translation::Kind;
  if (translation.kind == Kind::into || translation.kind == Kind::definition)
    throw Error(err::dbInvalidOperation, "A statement that makes or changes a table cannot be prepared");
  for (const dialect::Slot& slot : translation.slots) {
    change.parameters.push_back(slot.literal || slot.constant ? 0
                                                              : declaredIndex(translation, slot.parameter));
  }
  return change;
}

SqliteDatabase::Owned SqliteDatabase::translateTest(std::string_view text,
                                                    const std::vector<FieldDef>& columns) {
  OpenFile& open = file();
  const ReadTogether look(open.connection);
  open.catalog.refresh();
  dialect::scan(text, scanned_, &session_->clock);
  dialect::RowTest test = dialect::translateRowTest(text, columns, open.catalog);
  if (!test.translation.parameters.empty()) failUndeclared(test.translation.parameters[0].name);
  Statement statement = open.connection.prepareForSchema(test.translation.sql);
  Prepared prepared{std::make_shared<const dialect::Translation>(std::move(test.translation)),
                    std::move(statement)};
  Owned out{std::move(prepared), scanned_.literals, {}, std::move(test.descending)};
  for (std::size_t i = 0; i < columns.size(); ++i) out.parameters.push_back(i);
  return out;
}

Statement& SqliteDatabase::bindRow(Owned& test, const Value* row) {
  bind(test.prepared.statement, *test.prepared.translation, [&](std::size_t i) -> Input {
    return {i < test.parameters.size() ? row + i : ownedLiteral(test, i), nullptr};
  });
  return test.prepared.statement;
}

int SqliteDatabase::run(Owned& change, std::string_view sql, const std::vector<Value>& values) {
  return session_->guarded([&] {
    beginChange();
    for (int attempt = 0;; ++attempt) {
      OpenFile& open = file();
      const dialect::Translation& translation = *change.prepared.translation;
      if (values.size() < translation.parameters.size() && values.size() >= translation.declared)
        failUndeclared(translation.parameters[values.size()].name);
      if (values.size() != translation.parameters.size()) {
        throw Error(err::dbTooFewParameters,
                    "The statement has " + std::to_string(translation.parameters.size()) +
                        " parameters and was given " + std::to_string(values.size()) + " values");
      }
      bind(change.prepared.statement, translation, [&](std::size_t i) -> Input {
        if (const Value* literal = ownedLiteral(change, i)) return {literal, nullptr};
        const std::size_t parameter = change.parameters[i];
        return {&values[parameter], &translation.parameters[parameter]};
      });
      const int code = change.prepared.statement.step();
      if (code == SQLITE_DONE) {
        change.prepared.statement.reset();
        ++generation_;
        return open.connection.changes();
      }
      if ((code & 0xff) != SQLITE_SCHEMA || attempt == schemaRetries) failChange(code, translation.table);
      schemaChanged();
      change = translateChange(sql);
    }
  });
}

std::unique_ptr<Command> SqliteDatabase::prepare(std::string_view sql) {
  return session_->guarded(
      [&] { return std::unique_ptr<Command>(std::make_unique<SqliteCommand>(shared_from_this(), sql)); });
}

}  // namespace voxa
