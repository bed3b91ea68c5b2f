#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engines/jet_file/engine.h"
#include "jet/jet_writer.h"
#include "platform/clock.h"
#include "platform/temporary_folder.h"
#include "platform/text.h"

namespace voxa {

/// What a command prints.
inline std::string printed(const std::string& command) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  std::string text;
  char buffer[4096];
  for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;)
    text.append(buffer, got);
  return text;
}

inline std::string shellQuoted(const std::string& word) {
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'";
}

class JetFileTest : public testing::Test {
 protected:
  using Writer = jet::JetWriter;

  /// Every table of a file, its columns and its rows, as mdbtools' own program tells them.
  void expectAgreement(const std::string& path) {
    const auto db = engine->open(path);
    std::string names;
    for (const std::string& table : db->tableNames()) {
      names += table + '\n';
      expectAgreement(*db, path, table);
    }
    EXPECT_EQ(names, printed("mdb-tables -1 " + shellQuoted(path)));
  }

  void expectAgreement(Database& db, const std::string& path, const std::string& table) {
    std::string text = printed(
        "mdb-export -Q -b hex -0 NULL -d '\x1f' -R '\x1e' -D '%Y-%m-%d %H:%M:%S' -T "
        "'%Y-%m-%d %H:%M:%S' " +
        shellQuoted(path) + ' ' + shellQuoted(table));
    std::string_view rest = text;
    const TableDef& definition = db.tableDef(table);
    std::string_view heads = takeUntil(rest, '\x1e');
    for (const FieldDef& field : definition.fields) EXPECT_EQ(field.name, takeUntil(heads, '\x1f'));
    std::size_t rows = 0;
    db.visitRows(table, [&](const Value* row) {
      std::string_view line = takeUntil(rest, '\x1e');
      ++rows;
      for (std::size_t i = 0; i < definition.fields.size(); ++i) {
        const std::string_view cell = takeUntil(line, '\x1f');
        if (!alike(definition.fields[i], row[i], cell)) {
          ADD_FAILURE() << table << ", row " << rows << ", " << definition.fields[i].name << ": '" << cell
                        << "' there";
        }
      }
      return !HasFailure();
    });
    EXPECT_TRUE(HasFailure() || rest.empty()) << table << " has more than " << rows << " rows";
  }

  static bool alike(const FieldDef& field, const Value& value, std::string_view cell) {
    constexpr int guidSize = 38;
    if (value.isNull() || value == Value("")) return cell == "NULL";  // the same to that program
    if (field.type == DataType::Boolean) return cell == (value.toBool() ? "1" : "0");
    if (field.type == DataType::Date) {
      // That program knows no day before 1900, and none of the far future.
      const double days = value.toDateTime().days;
      return days < 2 || days > 1e6 || cell == formatDateTime(value.toDateTime(), "yyyy-mm-dd hh:nn:ss");
    }
    if (const auto* bytes = std::get_if<Bytes>(&value.data())) return toUpper(cell) == hexText(*bytes);
    if (field.type == DataType::Text && field.size == guidSize) {
      // It takes it for bytes, and leaves a hyphen out.
      std::string text = value.toText();
      return cell == hexText(Bytes{text.erase(24, 1)});
    }
    if (value.isText()) return cell == value.toText();
    return std::fabs(std::stod(std::string(cell)) - value.toDouble()) <= std::fabs(value.toDouble()) * 1e-6;
  }

  /// A table with a value of each type and some rows that tell their storage apart.
  static void writeAllTypes(Writer& writer, int rows) {
    using W = Writer;
    std::vector<W::Column> columns{{"Number", 4, 0, true},
                                   {"Yes or no", 1},
                                   {"Byte", 2},
                                   {"Small", 3},
                                   {"Amount", 5},
                                   {"Single", 6},
                                   {"Double", 7},
                                   {"When", 8},
                                   {"Bytes", 9, 20},
                                   {"Text", 10, 100},
                                   {"Picture", 11},
                                   {"Note", 12},
                                   {"Guid", 15},
                                   {"Decimal", 16, 0, false, 3},
                                   {"Plain", 10, 60, false, 0, {{"AllowZeroLength", "yes"}}}};
    writer.table("All types", columns);
    for (int i = 0; i < rows; ++i) {
      const bool none = i % 7 == 3;
      const auto cell = [&](W::Cell value) { return none ? W::Cell() : value; };
      const auto form = static_cast<W::Form>(i % 3);
      // No text that a row holds makes it longer than Jet 3 can point into.
      const std::string note =
          form == W::Form::inRow ? "short \xC3\xA4" : std::string(i % 5 == 1 ? 5000 : 900, 'n');
      const auto kind = i % 11 == 5 ? W::Kind::deleted : i % 11 == 6 ? W::Kind::overflown : W::Kind::plain;
      std::string guid;
      for (int k = 0; k < 16; ++k) guid += static_cast<char>(i + 17 * k);
      writer.row(
          {W::raw(i), i % 2 == 0 ? W::Cell("yes") : W::Cell(), cell(W::raw(static_cast<std::uint8_t>(i))),
           cell(W::raw(static_cast<std::int16_t>(-i))), cell(W::raw(std::int64_t{i} * 10'000 - 12'345)),
           cell(W::raw(static_cast<float>(i) * 0.1F)), cell(W::raw(i / 3.0)),
           cell(W::raw(36526 + i + i % 86400 / 86400.0)), cell(std::string("\x1\xFE\x2")),
           cell(writer.text("Gr\xC3\xB6\xC3\x9F"
                            "e " +
                                std::to_string(i),
                            i % 2 == 0)),
           cell(writer.longValue(std::string(static_cast<std::size_t>(i % 3000), '\x7'),
                                 form == W::Form::onePage ? W::Form::manyPages : W::Form::onePage)),
           cell(writer.memo(form == W::Form::onePage ? note.substr(0, 700) : note, form)), cell(guid),
           cell(std::string(1, i % 2 == 0 ? '\x80' : '\0') + std::string(12, '\0') + *W::raw(i * 1000 + 7)),
           cell(writer.text(std::string(static_cast<std::size_t>(i % 60), 'p')))},
          kind);
    }
  }

  TemporaryFolder folder;
  std::string file = folder / "old.mdb";
  SystemClock clock;
  std::unique_ptr<DatabaseEngine> engine = makeJetFileEngine(clock);
};

}  // namespace voxa
