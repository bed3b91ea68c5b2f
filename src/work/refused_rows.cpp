#include "work/refused_rows.h"

#include <filesystem>
#include <system_error>

#include "platform/files.h"
#include "work/refusal.h"

namespace voxa {

RefusedRows::~RefusedRows() {
  if (!made_) return;
  files_.clear();
  std::error_code nobodyToTell;
  std::filesystem::remove_all(files::native(folder_), nobodyToTell);
}

void RefusedRows::makeFolder() {
  const std::string wanted = folder_;
  for (int n = 2; files::exists(folder_); ++n) folder_ = wanted + "-" + std::to_string(n);
  files::makeFolder(folder_);
  made_ = true;
}

void RefusedRows::add(const RefusedRow& row) {
  constexpr std::size_t shown = 20;
  if (first_.size() < shown) first_.push_back(row.table + ", " + row.key + ": " + row.reason);
  ++count_;
  if (!keepGoing_) return;
  if (!made_) makeFolder();
  auto file = files_.find(row.table);
  if (file == files_.end()) {
    std::vector<std::string> columns{"Reason"};
    columns.insert(columns.end(), row.fields.begin(), row.fields.end());
    file = files_.try_emplace(row.table, folder_ + "\\" + names_.of(row.table), columns).first;
  }
  file->second.write(row.reason, row.values.data(), row.values.size());
}

void RefusedRows::addDamage(const std::vector<std::string>& sentences) {
  damage_.insert(damage_.end(), sentences.begin(), sentences.end());
}

void RefusedRows::decide() {
  for (auto& [table, file] : files_) file.close();
  if (keepGoing_ || (count_ == 0 && damage_.empty())) return;
  std::vector<std::string> lines = damage_;
  lines.insert(lines.end(), first_.begin(), first_.end());
  if (count_ > first_.size()) lines.push_back("and " + std::to_string(count_ - first_.size()) + " more rows");
  throw Refusal(std::string("nothing is made, since ") +
                (damage_.empty() ? "these rows cannot be taken over" : "the old file is damaged") +
                "; with --keep-going what is left is taken over, and refused rows are written to " + folder_ +
                ":" + eachOnALine(lines));
}

void RefusedRows::tell() {
  made_ = false;  // the folder stays
  std::string said;
  if (count_ > 0) {
    said = std::to_string(count_) + (count_ == 1 ? " row is" : " rows are") + " left out, and written to " +
           folder_ + ", with the reason of each";
  }
  if (!damage_.empty())
    said += (said.empty() ? "" : "; ") + std::string("the old file is damaged, and some of it is lost");
  if (!said.empty()) throw Leftover(said);
}

}  // namespace voxa
