#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engines/jet_file/reader/library.h"
#include "engines/jet_file/reader/output.h"
#include "engines/jet_file/reader/texts.h"

namespace voxa::jet {

/// Writes tables of an open file as frames.
class Tables {
 public:
  Tables(MdbHandle& file, std::uint64_t fileSize, Texts& texts, Output& out);

  /// The definitions of all tables that are not the system's, without rows, and the rows of the system's
  /// tables that tell of the others.
  void writeCatalogue();
  /// The definition and the rows of one table. Raises Failed when there is none of that name.
  void writeRows(const std::string& name);
  [[nodiscard]] std::uint32_t count() const { return count_; }

 private:
  struct Index {
    std::uint8_t flags = 0;
    std::vector<std::string> fields;
    std::string name;
  };
  MdbCatalogEntry* entry(std::string_view name) const;
  void write(MdbCatalogEntry& entry, bool rows);
  void writeSystem(std::string_view name);
  void writeDefinition(const MdbTableDef& table, const std::vector<Index>& indexes);
  void writeColumn(const MdbColumn& column);
  void writeValues(MdbTableDef& table);
  void note(Note note, std::string_view table, std::string_view column);
  /// The pages of a table's definition, one behind the other.
  [[nodiscard]] std::string definitionBytes(std::uint32_t page) const;
  std::vector<Index> readIndexes(const MdbTableDef& table);
  void requirePages(const MdbTableDef& table) const;

  MdbHandle& file_;
  std::uint64_t fileSize_;
  Output& out_;
  Texts& texts_;
  std::uint32_t count_ = 0;
};

}  // namespace voxa::jet
