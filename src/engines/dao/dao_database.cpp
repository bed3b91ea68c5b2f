#include "engines/dao/dao_database.h"

#include <algorithm>

#include "engines/dao/dao_recordset.h"
#include "engines/dao/row_blocks.h"
#include "engines/dao/statements.h"

namespace voxa {

using dao::Kind;
using dao::LeftOut;
using dao::Object;

namespace {

constexpr std::int32_t failOnError = 128;

/// A statement that the library has read once.
class DaoCommand final : public Command {
 public:
  DaoCommand(std::shared_ptr<DaoDatabase> database, Object query)
      : database_(std::move(database)), query_(std::move(query)) {
    dao::forEach(query_.object(Kind::parameters, "Parameters"),
                 [&](Object parameter) { parameters_.push_back(std::move(parameter)); });
  }

  int execute(const std::vector<Value>& values) override {
    return database_->session().guarded([&] {
      (void)database_->opened();
      if (values.size() < parameters_.size())
        throw Error(err::dbTooFewParameters, "Too few parameters: the statement has more than were given");
      for (std::size_t i = 0; i < parameters_.size(); ++i) parameters_[i].put("Value", values[i]);
      (void)query_.call("Execute", failOnError);
      return query_.number("RecordsAffected");
    });
  }

 private:
  std::shared_ptr<DaoDatabase> database_;
  Object query_;
  std::vector<Object> parameters_;
};

}  // namespace

DaoDatabase::DaoDatabase(std::shared_ptr<DaoSession> session, std::string path, Object database)
    : session_(std::move(session)), path_(std::move(path)), database_(std::move(database)) {
  session_->open.push_back(this);
}

DaoDatabase::~DaoDatabase() {
  try {
    close();
  } catch (const Error&) {
    // Nobody is left to tell.
  }
}

void DaoDatabase::close() {
  if (!database_) return;
  std::erase(session_->open, this);
  const Object database = std::exchange(database_, {});
  if (dao::processEnds()) return;
  if (session_->inTransaction) {
    session_->closed.push_back({path_, database});
  } else {
    session_->guarded([&] { (void)database.call("Close"); });
  }
}

const Object& DaoDatabase::opened() const {
  if (!database_) throw Error(err::dbInvalidObject, "The database is closed");
  return database_;
}

bool DaoDatabase::updatable() const {
  return session_->guarded([&] { return opened().flag("Updatable"); });
}

int DaoDatabase::execute(std::string_view sql, const Parameters& parameters) {
  return session_->guarded([&] {
    if (parameters.empty()) {
      (void)opened().call("Execute", std::string(sql), failOnError);
      return database_.number("RecordsAffected");
    }
    const Object query = queryFor(sql);
    dao::setParameters(query, parameters);
    (void)query.call("Execute", failOnError);
    return query.number("RecordsAffected");
  });
}

std::unique_ptr<Command> DaoDatabase::prepare(std::string_view sql) {
  return session_->guarded([&] {
    return std::unique_ptr<Command>(std::make_unique<DaoCommand>(shared_from_this(), queryFor(sql)));
  });
}

Object DaoDatabase::openRows(std::string_view source, const Parameters& parameters,
                             RowOptions options) const {
  Object from = opened();
  dao::Arguments arguments;
  if (parameters.empty()) {
    arguments.push_back(dao::argument(std::string(source)));
  } else {
    from = queryFor(source);
    dao::setParameters(from, parameters);
  }
  if (options.kind != RecordsetKind::automatic) {
    arguments.push_back(dao::argument(static_cast<std::int32_t>(options.kind)));
  } else if (options.readOnly) {
    arguments.push_back(dao::argument(LeftOut{}));
  }
  if (options.readOnly) arguments.push_back(dao::argument(dao::readOnlyRows));
  return from.objectWith(Kind::recordset, "OpenRecordset", std::move(arguments));
}

std::unique_ptr<Recordset> DaoDatabase::openRecordset(std::string_view source, const Parameters& parameters,
                                                      RowOptions options) {
  return session_->guarded([&] {
    return std::unique_ptr<Recordset>(std::make_unique<DaoRecordset>(shared_from_this(), std::string(source),
                                                                     openRows(source, parameters, options)));
  });
}

void DaoDatabase::visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                            const Parameters& parameters) {
  session_->guarded([&] {
    const Object rows = openRows(source, parameters, {.kind = RecordsetKind::forwardOnly});
    dao::visitBlocks(rows, visit);
    (void)rows.call("Close");
  });
}

}  // namespace voxa
