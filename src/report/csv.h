#pragma once

#include <string>
#include <vector>

namespace voxa {

struct Figures;

/// A table as a text: fields with commas between, moments in ISO form, lines ended by CR LF.
struct CsvFile {
  std::string name;  ///< "days.csv"
  std::string text;
};

/// A file for each figure; of people only when they were asked for.
[[nodiscard]] std::vector<CsvFile> csvOf(const Figures& figures);

}  // namespace voxa
