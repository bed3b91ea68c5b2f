#include "work/sql_script.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "platform/files.h"
#include "platform/observer.h"
#include "platform/text.h"
#include "work/sql_text.h"

namespace voxa {

namespace {

constexpr std::string_view firstLine = "-- voxa database, schema ";
constexpr std::string_view lastLine = "-- end";

class Writer {
 public:
  Writer(Database& from, files::Stream& out, Observer& observer)
      : from_(from), out_(out), observer_(observer) {}

  Transferred run() {
    out_.write(std::string(firstLine) + std::to_string(from_.schemaVersion()) + "\n");
    const std::vector<std::string> tables = from_.tableNames();
    for (const std::string& table : tables) writeTable(from_.tableDef(table));
    for (const Relation& relation : from_.relations()) statement(sqlText(relation), done_.relations);
    for (const QueryDef& query : from_.queries()) statement(sqlText(query), done_.queries);
    out_.write(std::string(lastLine) + "\n");
    return std::move(done_);
  }

 private:
  void statement(const std::string& text, std::size_t& count) {
    out_.write(text + ";\n");
    ++count;
  }

  void writeTable(const TableDef& table) {
    TransferredTable& done = done_.tables.emplace_back(TransferredTable{table.name});
    out_.write(sqlText(table) + ";\n");
    for (const IndexDef& index : table.indexes) {
      if (index.isUnique()) statement(sqlText(index, table.name), done_.indexes);
    }
    const std::string insertion =
        "INSERT INTO [" + table.name + "] (" + nameList(table.fieldNames()) + ") VALUES (";
    from_.visitRows("[" + table.name + "]", [&](const Value* row) {
      std::string text = insertion;
      for (std::size_t i = 0; i < table.fields.size(); ++i) text += (i == 0 ? "" : ", ") + sqlText(row[i]);
      out_.write(text + ");\n");
      observer_.progress("Writing row", ++rows_, 0);
      ++done.read;
      return true;
    });
    done.written = done.read;
    for (const IndexDef& index : table.indexes) {
      if (!index.isUnique()) statement(sqlText(index, table.name), done_.indexes);
    }
  }

  Database& from_;
  files::Stream& out_;
  Observer& observer_;
  Transferred done_;
  std::size_t rows_ = 0;
};

/// The statements of a file, one after the other.
class Statements {
 public:
  explicit Statements(const std::string& path)
      : path_(path), file_(path, files::Stream::Mode::read, files::Stream::Kind::any) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (startsWith(byteOrderMark)) at_ += byteOrderMark.size();
    if (!startsWith(firstLine)) return;
    const std::string line = takeLine();
    const char* const end = line.data() + line.size();
    const bool read = std::from_chars(line.data() + firstLine.size(), end, version_.emplace()).ptr == end;
    if (!read) throw Error(err::dbSyntax, "The first line does not tell the version of the schema: " + line);
  }

  [[nodiscard]] std::optional<std::size_t> version() const { return version_; }
  /// The line where the last statement began, from 1.
  [[nodiscard]] std::size_t line() const { return begun_; }

  /// The next statement, without its semicolon; none behind the last one.
  std::optional<std::string> next() {
    while (skipBlanks() && startsWith("--")) {
      if (takeLine() != lastLine || !version_) continue;
      if (skipBlanks()) fail("there is something behind the line that ends the file");
      return std::nullopt;
    }
    begun_ = line_;
    std::string text;
    char open = '\0';  // the quote or bracket that ends what stands here
    while (more()) {
      const char c = take();
      if (open != '\0') {
        if (c == open) open = '\0';
      } else if (c == '\'' || c == '"' || c == '#') {
        open = c;
      } else if (c == '[') {
        open = ']';
      } else if (c == ';') {
        if (!isUtf8(text)) fail("this is no UTF-8; save the file as that");
        return text;
      }
      text += c;
    }
    if (!text.empty() || version_) fail("the file ends amid its statements");
    return std::nullopt;
  }

 private:
  [[noreturn]] void fail(const char* what) const {
    throw Error(err::dbSyntax, "Line " + std::to_string(line_) + " of " + path_ + ": " + what);
  }
  bool more() {
    if (at_ < buffer_.size()) return true;
    buffer_ = file_.readSome();
    at_ = 0;
    return !buffer_.empty();
  }
  char take() {
    const char c = buffer_[at_++];
    if (c == '\n') ++line_;
    return c;
  }
  bool skipBlanks() {
    while (more() && std::string_view(" \t\r\n").find(buffer_[at_]) != std::string_view::npos) (void)take();
    return more();
  }
  /// Whether a text, which begins a line and is short, comes next.
  bool startsWith(std::string_view text) {
    while (buffer_.size() - at_ < text.size()) {
      const std::string behind = file_.readSome();
      if (behind.empty()) break;
      buffer_.erase(0, at_).append(behind);
      at_ = 0;
    }
    return std::string_view(buffer_).substr(at_).starts_with(text);
  }
  std::string takeLine() {
    std::string text;
    while (more()) {
      const char c = take();
      if (c == '\n') break;
      if (c != '\r') text += c;
    }
    return text;
  }

  std::string path_;
  files::Stream file_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t begun_ = 1;
  std::optional<std::size_t> version_;
};

}  // namespace

bool isScript(const std::string& path) {
  constexpr std::size_t ending = 4;
  return path.size() >= ending && equalNoCase(path.substr(path.size() - ending), ".sql");
}

Transferred writeScript(Database& from, const std::string& path, Observer& observer) {
  files::createNew(path);
  try {
    files::Stream out(path, files::Stream::Mode::write, files::Stream::Kind::plain);
    Transferred done = Writer(from, out, observer).run();
    out.close();
    return done;
  } catch (...) {
    files::removeRegular(path);
    throw;
  }
}

Transferred readScript(const std::string& path, DatabaseEngine& engine, Database& to,
                       const OnRefused& refused, Observer& observer) {
  Statements statements(path);
  Transaction transaction(engine, to);
  std::size_t count = 0;
  while (const std::optional<std::string> text = statements.next()) {
    observer.progress("Statement", ++count, 0);
    if (text->empty()) continue;
    try {
      (void)to.execute(*text);
    } catch (const Error& error) {
      const std::string line = "line " + std::to_string(statements.line());
      if (!isAboutRow(error))
        throw Error(error.number(), (path + ", ").append(line).append(": ") + error.description());
      refused({"Statements", line, error.description(), {"Statement"}, {*text}});
    }
  }
  if (const auto version = statements.version(); version && *version != 0) to.setSchemaVersion(*version);
  Transferred done;
  for (const std::string& table : to.tableNames()) {
    const auto rows =
        static_cast<std::size_t>(to.openRecordset("SELECT COUNT(*) FROM [" + table + "]")->get(0).toInt32());
    done.tables.push_back({table, rows, rows});
    done.indexes += to.tableDef(table).indexes.size();
  }
  done.relations = to.relations().size();
  done.queries = to.queries().size();
  transaction.commit();
  return done;
}

}  // namespace voxa
