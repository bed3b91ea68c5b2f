#include "work/refused_rows.h"

#include "platform/files.h"
#include "work/refusal.h"

namespace voxa {

void RefusedRows::add(const RefusedRow& row) {
  constexpr std::size_t shown = 20;
  if (first_.size() < shown) first_.push_back(row.table + ", " + row.key + ": " + row.reason);
  if (count_++ == 0 && keepGoing_) files::makeFolder(folder_);
  if (!keepGoing_) return;
  auto file = files_.find(row.table);
  if (file == files_.end()) {
    std::vector<std::string> columns{"Reason"};
    columns.insert(columns.end(), row.fields.begin(), row.fields.end());
    file = files_.try_emplace(row.table, folder_ + "\\" + names_.of(row.table), columns).first;
  }
  file->second.write(row.reason, row.values.data(), row.values.size());
}

void RefusedRows::decide() {
  for (auto& [table, file] : files_) file.close();
  if (count_ == 0 || keepGoing_) return;
  std::vector<std::string> lines = first_;
  if (count_ > lines.size()) lines.push_back("and " + std::to_string(count_ - lines.size()) + " more");
  throw Refusal(
      "nothing is made, since these rows cannot be taken over (with --keep-going they are left out, and "
      "written to " +
      folder_ + "):" + eachOnALine(lines));
}

void RefusedRows::tell() const {
  if (count_ == 0) return;
  throw Leftover(std::to_string(count_) + (count_ == 1 ? " row is" : " rows are") +
                 " left out, and written to " + folder_ + ", with the reason of each");
}

}  // namespace voxa
