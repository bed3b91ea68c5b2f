#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace site {

/// The row at which a query stands. Valid only within the callback.
class Row {
 public:
  explicit Row(sqlite3_stmt* statement) : statement_(statement) {}
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] int number(int column) const { return static_cast<int>(integer(column)); }
  [[nodiscard]] bool flag(int column) const { return integer(column) != 0; }
  [[nodiscard]] std::string text(int column) const;  ///< empty for Null
  [[nodiscard]] bool isNull(int column) const;
  template <typename T>
  [[nodiscard]] std::optional<T> maybe(int column) const {
    if (isNull(column)) return std::nullopt;
    return static_cast<T>(integer(column));
  }

 private:
  sqlite3_stmt* statement_;
};

/// The SQLite file of a site. It is safe with a second process and when a process is killed at any moment. A
/// power cut may lose the last calls. Each statement is prepared once. Every failure raises Failure.
class Storage {
 public:
  /// Opens the file and creates what it lacks. Only the owner can use the files. Raises Failure for a file of
  /// another layout.
  explicit Storage(const std::filesystem::path& file);
  /// An empty site without a file.
  Storage();
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  /// Runs a statement with its parameters: integers, texts, and std::optional of either kind.
  template <typename... Arguments>
  void run(std::string_view sql, const Arguments&... arguments) {
    each(
        sql, [](const Row&) {}, arguments...);
  }
  /// Calls `take` with each row of a query. `take` must not run the same SQL text.
  template <typename Take, typename... Arguments>
  void each(std::string_view sql, Take take, const Arguments&... arguments) {
    Use use(*this, sql);
    int index = 0;
    (use.bind(++index, arguments), ...);
    while (use.step()) take(Row(use.statement()));
  }
  /// How many rows the last `run` changed.
  [[nodiscard]] int changes() const;

 private:
  // One use of a prepared statement. It is reset at the end, even when an exception ends the use.
  class Use {
   public:
    Use(Storage& storage, std::string_view sql);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    void bind(int index, std::int64_t value);
    void bind(int index, std::string_view value);
    void bind(int index, const std::string& value) { bind(index, std::string_view(value)); }
    template <typename T>
    void bind(int index, const std::optional<T>& value) {
      if (value) bind(index, *value);
    }
    bool step();
    [[nodiscard]] sqlite3_stmt* statement() const { return statement_; }

   private:
    Storage& storage_;
    sqlite3_stmt* statement_;
  };

  void open(const char* name);
  void createTables();
  void execute(const char* sql);
  sqlite3_stmt* prepare(std::string_view sql);
  [[noreturn]] void fail() const;

  sqlite3* connection_ = nullptr;
  std::string name_;
  std::map<std::string, sqlite3_stmt*, std::less<>> statements_;
};

/// Begins a transaction at once and waits for other processes. It is rolled back unless it is committed.
class Transaction {
 public:
  explicit Transaction(Storage& storage);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();

 private:
  Storage& storage_;
  bool open_ = true;
};

}  // namespace site
