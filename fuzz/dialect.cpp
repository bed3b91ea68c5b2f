// Statements of the engine's language are scanned, translated and run. An input may be two of them with a NUL
// between. The second is then scanned with what is left from scanning the first.

#include "engines/language/dialect.h"

#include "engines/language/lexer.h"
#include "engines/sqlite/fixture.h"
#include "platform/text.h"
#include "require.h"

namespace voxa::fuzz {
namespace {

/// The outcome of a step: a result, or the number of its error.
template <typename T>
struct Outcome {
  T result{};
  int error = 0;

  template <typename Step>
  explicit Outcome(Step step) : error(errorOf([&] { step(result); })) {}
};
using Scan = Outcome<dialect::Scanned>;
using Translated = Outcome<dialect::Translation>;

bool same(const dialect::Slot& a, const dialect::Slot& b) {
  return a.literal == b.literal && a.parameter == b.parameter && a.convertTo == b.convertTo;
}
bool same(const dialect::Translation& a, const dialect::Translation& b) {
  return a.kind == b.kind && a.sql == b.sql && a.parameters == b.parameters && a.table == b.table &&
         a.columns == b.columns && a.sourceFields == b.sourceFields && a.updatedFields == b.updatedFields &&
         std::equal(a.slots.begin(), a.slots.end(), b.slots.begin(), b.slots.end(),
                    [](const auto& x, const auto& y) { return same(x, y); });
}

/// A statement made of a key, with a literal in the place of each mark.
std::string filled(const std::string& key) {
  const char* const literals[] = {"7", "2.5", "#1/2/2003#", "'x'"};
  constexpr char first = 4;  // the mark of a 32-bit integer
  std::string sql;
  for (const char c : key) {
    if (c >= first && c < first + 4) {
      sql += literals[c - first];
    } else {
      sql += c;
    }
  }
  return sql;
}

class Statements : public DatabaseTest, private dialect::Schema {
 public:
  Statements() {
    createTables();
    for (const char* name : {"Front", "front", "Back"}) {
      db->execute("insert into Readers (StationId, Position, Name) values (1, 3, '" + std::string(name) +
                  "')");
    }
    db->createQuery({"Active", "PARAMETERS [p] Integer; select * from Stations where Active and Id = [p]"});
  }

  void check(std::string_view first, std::string_view second) {
    dialect::Scanned reused;
    (void)errorOf([&] { dialect::scan(first, reused); });
    const Scan fresh([&](auto& out) { dialect::scan(second, out); });
    const int error = errorOf([&] { dialect::scan(second, reused); });
    require(error == fresh.error, "scanning after another statement fails for the same reason");
    if (error == 0) {
      require(reused.key == fresh.result.key, "scanning after another statement gives the same key");
      require(reused.literals == fresh.result.literals, "and the same literals");
    }
    const Translated translated = translate(second);
    if (fresh.error == 0) checkKey(fresh.result.key, translated);
    (void)errorOf([&] { (void)dialect::translateRule(second, db->tableDef("Readers").fields[2]); });
    if (tablesNamed(second) <= 5) run(second, translated);  // five tables of five rows take no time
  }

 private:
  [[nodiscard]] const TableDef* table(std::string_view name) const override {
    const TableDef* found = nullptr;
    (void)errorOf([&] { found = &db->tableDef(name); });
    return found;
  }
  Translated translate(std::string_view sql) const {
    return Translated([&](auto& out) { out = dialect::translate(sql, *this); });
  }

  void checkKey(const std::string& key, const Translated& translated) const {
    const std::string other = filled(key);
    const Scan scan([&](auto& out) { dialect::scan(other, out); });
    if (scan.error != 0 || scan.result.key != key) return;  // a name in brackets had a mark in it
    const Translated again = translate(other);
    // The literals decide, too, whether an expression is one that GROUP BY lists.
    const auto byLiterals = [](const Translated& one) {
      return one.error == err::dbNotAggregated || !one.result.sameLiterals.empty();
    };
    if (byLiterals(translated) || byLiterals(again)) return;
    require(again.error == translated.error && same(again.result, translated.result),
            "statements of one key have one translation");
  }

  static std::size_t tablesNamed(std::string_view sql) {
    std::size_t count = 0;
    (void)errorOf([&] {
      dialect::Lexer lexer(sql);
      dialect::Token token;
      for (lexer.next(token); token.kind != dialect::TokenKind::end; lexer.next(token)) {
        const bool after =
            token.position + token.text.size() < sql.size() && sql[token.position + token.text.size()] == '.';
        for (const char* name : {"Stations", "Readers", "[Stations]", "[Readers]"}) {
          if (!after && equalNoCase(token.text, name)) ++count;
        }
      }
    });
    return count;
  }

  void run(std::string_view sql, const Translated& translated) {
    engine->begin();
    try {
      if (translated.error == 0 && translated.result.kind != dialect::Translation::Kind::select) {
        (void)db->execute(sql);
      } else {
        readAll(*db->openRecordset(sql, {{"p", Value(std::int16_t{1})}}));
      }
      require(translated.error == 0 || isName(sql), "what runs was translated");
    } catch (const Error& error) {
      checkRefusal(error);
    }
    for (const RecordsetKind kind : {RecordsetKind::automatic, RecordsetKind::snapshot}) {
      try {
        (void)db->openRecordset("Stations", {}, {kind})->findFirst(sql);
      } catch (const Error& error) {
        checkRefusal(error);
      }
    }
    engine->rollback();
  }
  static void readAll(Recordset& rows) {
    std::size_t count = 0;
    for (; !rows.eof(); rows.moveNext(), ++count) {
      for (std::size_t i = 0; i < rows.fieldCount(); ++i) (void)rows.get(i);
    }
    require(count == rows.recordCount(), "the rows are as many as they are said to be");
  }
  static bool isName(std::string_view sql) {
    for (const char* name : {"Stations", "Readers", "Active"}) {
      if (toLower(sql).find(toLower(name)) != std::string::npos) return true;
    }
    return false;
  }
  /// SQLite must accept every translation. Only an integer overflow may stop its run.
  static void checkRefusal(const Error& error) {
    require(error.number() != err::dbNotADatabase && error.number() != err::internalError,
            error.description());
    const std::string refused = "The database refused the call: ";
    const std::string text = error.description();
    if (!text.starts_with(refused)) return;
    require(text == refused + "integer overflow", text);
  }
  void TestBody() override {}
};

}  // namespace
}  // namespace voxa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static voxa::fuzz::Statements statements;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\0');
  statements.check(input.substr(0, end), end == input.npos ? input : input.substr(end + 1));
  return 0;
}
