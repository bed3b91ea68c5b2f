// voxa import and voxa export: the cards as a table in a text file.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>

#include "app/qdb.h"
#include "card_table.h"
#include "commands.h"
#include "may_write.h"
#include "messages/strings.h"
#include "output/progress.h"
#include "platform/csv.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/text.h"
#include "session.h"
#include "work/card_values.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct Column {
  const char* name;
  std::optional<std::string> CardTexts::*text;
  bool mandatory;
};
constexpr Column columns[] = {
    {"number", &CardTexts::number, false}, {"name", &CardTexts::name, true},
    {"code", &CardTexts::code, true},      {"group", &CardTexts::group, true},
    {"pin", &CardTexts::pin, false},       {"until", &CardTexts::until, false},
    {"credit", &CardTexts::credit, false}, {"supervisor", &CardTexts::supervisor, false},
    {"valid", &CardTexts::valid, false}};

std::string contentsOf(const std::string& path) {
  std::string text;
  files::Stream file(path, files::Stream::Mode::read, files::Stream::Kind::any);
  while (!file.atEnd()) text += file.readLine() + "\n";
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) text.erase(0, byteOrderMark.size());
  return text;
}

std::vector<const Column*> columnsOf(const CsvRecord& header) {
  std::vector<const Column*> order;
  for (const std::string& field : header.fields) {
    const std::string name = CLI::detail::trim_copy(field);
    const auto* column = std::find_if(std::begin(columns), std::end(columns),
                                      [&](const Column& known) { return equalNoCase(known.name, name); });
    if (column == std::end(columns)) throw Refusal("the header line names an unknown column: " + name);
    if (std::find(order.begin(), order.end(), column) != order.end()) {
      throw Refusal("the header line names a column twice: " + name);
    }
    order.push_back(column);
  }
  for (const Column& column : columns) {
    if (column.mandatory && std::find(order.begin(), order.end(), &column) == order.end()) {
      throw Refusal(std::string("the header line does not name the column ") + column.name);
    }
  }
  return order;
}

CardTexts textsOf(const CsvRecord& record, const std::vector<const Column*>& order) {
  if (!record.fault.empty()) throw Refusal(record.fault);
  if (record.fields.size() != order.size()) {
    throw Refusal(std::to_string(record.fields.size()) + " fields instead of " +
                  std::to_string(order.size()));
  }
  CardTexts texts;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (!isUtf8(record.fields[i])) throw Refusal(std::string(order[i]->name) + " is not UTF-8");
    const bool isName = order[i]->text == &CardTexts::name;
    std::string text = csvText(isName ? record.fields[i] : CLI::detail::trim_copy(record.fields[i]));
    if (order[i]->mandatory || !text.empty()) texts.*(order[i]->text) = std::move(text);
  }
  return texts;
}

/// Reads the lines of a file, and names those that are not as they should be.
class Import {
 public:
  explicit Import(Session& session) : session_(session) {}

  void read(const std::vector<CsvRecord>& records) {
    if (records.empty()) throw Refusal("the file has no header line");
    if (!records.front().fault.empty()) throw Refusal("the header line has " + records.front().fault);
    const auto order = columnsOf(records.front());
    for (auto record = records.begin() + 1; record != records.end(); ++record) readLine(*record, order);
    for (CardValues& card : cards_) {
      if (bad_ == 0 && !card.number) {
        card.number = taken_.freeNumber();
        taken_.take(card, "");
      }
    }
    if (bad_ > shownLines) std::cerr << "and " << bad_ - shownLines << " more lines\n";
    if (bad_ > 0) throw Refusal("nothing is imported: " + std::to_string(bad_) + " bad lines");
  }

  void write() {
    Progress progress("Importing", cards_.size());
    Transaction transaction(session_.library().engine(), session_.qdb().database());
    const auto rows = session_.rows("select * from Cardholders where Id = 0");
    for (const CardValues& card : cards_) {
      rows->addNew();
      card.set(*rows);
      markWhole(*rows);
      rows->update();
      progress.step();
    }
    transaction.commit();
  }

  [[nodiscard]] std::size_t cards() const { return cards_.size(); }

 private:
  static constexpr std::size_t shownLines = 20;

  void readLine(const CsvRecord& record, const std::vector<const Column*>& order) {
    const std::string line = "line " + std::to_string(record.line);
    try {
      CardValues card(textsOf(record, order), groups_, session_.clock());
      taken_.requireFree(card);
      taken_.take(card, line);
      cards_.push_back(std::move(card));
    } catch (...) {
      if (++bad_ <= shownLines) std::cerr << line << ": " << reason() << '\n';
    }
  }

  // Of the exception that is being handled.
  std::string reason() {
    try {
      throw;
    } catch (const Refusal& refusal) {
      if (refusal.mnemonic().empty()) return refusal.what();
      return session_.strings().read(refusal.mnemonic()) + " " + refusal.what();
    } catch (...) {
      const ErrorInfo error = describeCurrentException();
      return "Error " + std::to_string(error.number) + ": " + error.description;
    }
  }

  Session& session_;
  GroupNames groups_{session_.library()};
  TakenByCards taken_{session_.library()};
  std::vector<CardValues> cards_;
  std::size_t bad_ = 0;
};

void importCards(Session& session, const std::string& path) {
  session.openForSending();
  const std::size_t cards = importCardTable(session, contentsOf(session.callersFile(path)));
  std::cout << cards << " cards imported, to be sent with 'voxa download cards'\n";
}

std::string lineOf(const Recordset& row, const GroupNames& groups, bool showPins) {
  const auto text = [](const Value& value) { return value.isNull() ? "" : value.toText(); };
  const auto yesOrNo = [](const Value& value) { return value.toBool() ? "yes" : "no"; };
  const Value until = row.get("ValidationDate");
  const Value pin = row.get("PINCode");
  const Value group = row.get("AccessGroupId");
  std::string line = text(row.get("CardNum")) + "," + csvField(row.get("Name").toText()) + "," +
                     text(row.get("CardCode")) + "," +
                     csvField(groups.name(group.isNull() ? std::int16_t{0} : group.toInt16())) + ",";
  if (showPins) line += (pin.isNull() ? "" : zeroPadded(pin.toInt32(), 4)) + ",";
  line += (until.isNull() ? "" : formatDateTime(until.toDateTime(), "yyyy-mm-dd")) + ",";
  return line + text(row.get("Credit")) + "," + yesOrNo(row.get("Supervisor")) + "," +
         yesOrNo(row.get("Validated")) + "\r\n";
}

struct ExportOptions {
  std::string path;
  bool force = false;
  bool showPins = false;
};

void exportCards(Session& session, const ExportOptions& options) {
  session.open();
  const auto [text, cards] = cardTable(session, options.showPins);
  if (options.path.empty()) {
    std::cout << text;
    return;
  }
  const std::string path = session.callersFile(options.path);
  requireMayWrite(session, path, options.force);
  files::Stream file(path, files::Stream::Mode::write, files::Stream::Kind::any);
  file.write(text);
  file.close();
  std::cout << cards << " cards exported\n";
}

}  // namespace

std::size_t importCardTable(Session& session, std::string_view text) {
  Import import(session);
  import.read(readCsv(text));
  import.write();
  return import.cards();
}

CardTable cardTable(Session& session, bool showPins) {
  CardTable table;
  table.text =
      std::string("number,name,code,group,") + (showPins ? "pin," : "") + "until,credit,supervisor,valid\r\n";
  const GroupNames groups(session.library());
  const auto rows = session.rows("select * from Cardholders where Deleted = false order by CardNum");
  for (; !rows->eof(); rows->moveNext()) table.text += lineOf(*rows, groups, showPins);
  table.cards = rows->recordCount();
  return table;
}

void addImportCommands(CLI::App& app, Session& session) {
  auto* import = app.add_subcommand("import", "Read a table of cards")->require_subcommand(1);
  auto* importing = import->add_subcommand("cards", "Add the cards of a table, all or none");
  auto source = std::make_shared<std::string>();
  importing->add_option("FILE", *source, "The table: UTF-8, fields separated by commas")->required();
  importing->footer(
      "The header line names the columns: name, code and group, and what there is of number, pin, until,\n"
      "credit, supervisor and valid. An empty field is not given.\n"
      "Example:\n  voxa import cards staff.csv");
  importing->callback([&session, source] { importCards(session, *source); });

  auto* exporting = app.add_subcommand("export", "Write a table of cards")->require_subcommand(1);
  auto* cards = exporting->add_subcommand("cards", "Write the cards as a table that import reads");
  auto options = std::make_shared<ExportOptions>();
  cards->add_option("FILE", options->path, "File of the table; standard output without one");
  cards->add_flag("--show-pins", options->showPins, "With the personal codes");
  cards->add_flag("--force", options->force, "Replace the file when it exists");
  cards->footer("Example:\n  voxa export cards staff.csv");
  cards->callback([&session, options] { exportCards(session, *options); });
}

}  // namespace voxa::cli
