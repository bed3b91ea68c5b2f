#include "journal_output.h"

#include <ostream>
#include <vector>

#include "output/table_output.h"
#include "platform/datetime.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

const std::vector<std::string> columns = {"Date",    "Station",    "Reader", "Type",
                                          "Meaning", "Cardholder", "Data"};

bool hasDate(const JournalRow& row) {
  return row.date.days != 0;
}

std::string dateText(const JournalRow& row) {
  return hasDate(row) ? formatDateTime(row.date, "dd/mm/yyyy hh:nn") : "-";
}

std::vector<Cell> cellsOf(const JournalRow& row, JournalForm form) {
  const auto name = [](const std::string& text) { return text.empty() ? Value() : Value(text); };
  const Cell date = !hasDate(row)              ? Cell()
                    : form == JournalForm::csv ? Cell(dateText(row))
                                               : Cell::moment(row.date);
  return {date,
          name(row.station),
          name(row.reader),
          row.type,
          textOf(row.meaning),
          name(row.cardholder),
          row.code.empty() ? row.data : row.code};
}

/// A name without a line feed or tab, which would end the line.
std::string inLine(std::string name) {
  for (char& c : name) {
    if (c == '\n' || c == '\t') c = '?';
  }
  return terminalText(name);
}

std::string who(const JournalRow& row) {
  if (row.meaning == TransactionMeaning::unknownCard) return "unknown card " + row.code;
  if (row.cardholder.empty()) return "";
  const bool isNumber = row.cardholder.find_first_not_of("0123456789") == std::string::npos;
  return (isNumber ? "card " : "") + row.cardholder;
}

}  // namespace

std::string sentenceOf(const JournalRow& row) {
  std::string text = dateText(row) + "  ";
  if (const std::string name = who(row); !name.empty()) text += inLine(name) + ", ";
  text +=
      row.reader.empty() ? "a reader of " + inLine(row.station) + " that has no name" : inLine(row.reader);
  if (row.meaning == TransactionMeaning::other)
    return text + ", event " + row.type + " (" + inLine(row.data) + ")";
  return text + ", " + (row.meaning == TransactionMeaning::unknownCard ? "refused" : textOf(row.meaning));
}

void printJournal(std::ostream& out, const JournalList& list, JournalForm form) {
  if (form == JournalForm::sentences) {
    list.each([&](const JournalRow& row) { out << sentenceOf(row) << '\n'; });
    return;
  }
  const auto eachRow = [&](const auto& print) {
    list.each([&](const JournalRow& row) { print(cellsOf(row, form)); });
  };
  if (form == JournalForm::csv) return printCsv(out, columns, eachRow);
  printList(out, columns, form == JournalForm::json, eachRow);
}

}  // namespace voxa::cli
