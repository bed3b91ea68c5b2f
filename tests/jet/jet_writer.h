#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace voxa::jet {

/// Writes files of the Jet engine, versions 3 and 4, for tests and benchmarks. Their indexes have no entries.
class JetWriter {
 public:
  struct Options {
    int version = 4;
    std::string password{};  ///< ASCII
    std::uint32_t key = 0;   ///< encrypts the pages
    int codePage = 1252;     ///< of Jet 3: only noted, texts are given in it
  };
  /// The types of the format: 1 yes/no, 2 byte, 3 integer, 4 long, 5 currency, 6 single, 7 double, 8 date, 9
  /// binary, 10 text, 11 OLE, 12 memo, 15 GUID, 16 decimal.
  struct Column {
    std::string name;
    int type = 10;
    int size = 0;  ///< characters of a text, bytes of a binary
    bool autoNumber = false;
    int scale = 0;  ///< of a decimal
    /// Names and texts; "yes" and "no" are stored as such.
    std::vector<std::pair<std::string, std::string>> properties{};
  };
  struct Index {
    std::string name;
    std::vector<std::size_t> columns;
    bool primary = false;
    bool unique = false;
    bool required = false;
  };
  /// The bytes of a value as they lie in a row; none for Null. Of a yes/no: something is yes.
  using Cell = std::optional<std::string>;
  enum class Form { inRow, onePage, manyPages };
  enum class Kind { plain, deleted, overflown };

  explicit JetWriter(Options options);

  /// Begins a table; rows go to the last one that was begun. flags: of the object, e.g. 0x80000002 for the
  /// system's.
  void table(const std::string& name, std::vector<Column> columns, std::vector<Index> indexes = {},
             std::uint32_t flags = 0, const std::string& rowRule = {});
  void row(const std::vector<Cell>& cells, Kind kind = Kind::plain);
  /// An entry of the catalogue: 5 a query, 6 a linked table, -32768 a form. Returns its number.
  std::int32_t object(int type, const std::string& name, const std::string& linkedFile = {},
                      const std::string& linkedTable = {});
  void relation(const std::string& name, const std::string& table, const std::string& foreignTable,
                const std::vector<std::pair<std::string, std::string>>& fields, int flags);
  void queryPart(std::int32_t query, int attribute, int flag, const std::string& expression = {},
                 const std::string& name1 = {}, const std::string& name2 = {});
  void write(const std::string& path);

  /// A text in the file's form. compressed: of Jet 4, for texts of U+0001 to U+00FF.
  [[nodiscard]] Cell text(std::string_view utf8, bool compressed = true) const;
  /// A long value of these bytes.
  [[nodiscard]] Cell longValue(const std::string& bytes, Form form);
  [[nodiscard]] Cell memo(std::string_view utf8, Form form) { return longValue(*text(utf8, false), form); }
  template <typename Number>
  [[nodiscard]] static Cell raw(Number number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
  }

 private:
  /// Pages that are filled with rows one after the other.
  struct Filling {
    std::string owner;  ///< four bytes
    std::vector<std::uint32_t> pages{};
    std::size_t end = 0;  ///< where the last row begins
    std::size_t count = 0;
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;
    std::vector<Index> indexes;
    std::uint32_t flags = 0;
    std::string rowRule;
    std::uint32_t page = 0;
    Filling rows{};
    std::uint32_t rowCount = 0;
  };

  std::uint32_t newPage();
  std::uint32_t place(Filling& filling, const std::string& bytes, unsigned flags = 0);
  void addRow(Table& table, const std::vector<Cell>& cells, Kind kind);
  [[nodiscard]] std::string packed(const Table& table, const std::vector<Cell>& cells) const;
  std::uint32_t usageMap(const std::vector<std::uint32_t>& pages);
  void writeDefinition(Table& table);
  [[nodiscard]] std::string properties(const Table& table) const;
  [[nodiscard]] std::string name(const std::string& text) const;  ///< with its length
  Cell shortText(const std::string& text) const;

  Options options_;
  bool old_;
  std::size_t pageSize_;
  std::vector<std::string> pages_;
  std::vector<Table> tables_;
  Filling long_{"LVAL"};
  Filling maps_{std::string(4, '\0')};
  Table objects_;
  Table relations_;
  Table queries_;
  std::int32_t nextObject_ = -2000;
  std::uint32_t parts_ = 0;
};

}  // namespace voxa::jet
