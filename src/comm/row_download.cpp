#include "comm/row_download.h"

#include "app/gen_table.h"
#include "app/library.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "files/command_file.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

// Of a reader that there is: sending to one that there is not tells so itself.
void requireAddress(Database& database, const Component& component) {
  if (component.type != CTReader) return;
  const auto reader = database.openRecordset(
      "parameters pName memo; select Name, ControllerAddress from Readers where Name = pName",
      {{"pName", component.name}});
  if (reader->eof()) return;
  const std::string fault = addressFault(reader->get("Name").toText(), reader->get("ControllerAddress"));
  if (!fault.empty()) throw Error(err::invalidArgument, "Invalid argument: " + fault);
}

std::int16_t sendRow(Library& library, GenTable& rows, const RowDownload& what, const Component& component,
                     std::vector<Value>& sent) {
  sent = rows.currentValues();
  requireAddress(library.QDB().database(), component);
  library.CommandFile().write(what.lines(*rows.currentRecordset()));
  return library.Com().sendToComp(CmSendCommand, component.type, component.name);
}

}  // namespace

std::int16_t downloadRow(Library& library, GenTable& rows, const RowDownload& what,
                         const Component& component, std::int16_t params) {
  bool nothingToSend = false;
  std::vector<Value> sent;
  std::int16_t status = library.attempt([&]() -> std::int16_t {
    if (rows.openWhere(what.condition)) {
      library.report({what.notFoundMnemonic, what.notFoundMethod, Value(what.number)});
      nothingToSend = true;
      return what.notFoundResult;
    }
    if ((params & DLFull) != 0) {
      if (const std::int16_t failed = rows.setFlagsD(true); failed != 0) return failed;
    } else if (!rows.getFlagDSetFound()) {
      nothingToSend = true;
      return 0;
    }
    return sendRow(library, rows, what, component, sent);
  });
  if (nothingToSend) return status;
  if (status == 0) return what.clearsFlags ? rows.clearFlagsOfSent(what.condition, sent) : status;
  if (what.alwaysShowsFailure || (params & DLNoMessage) == 0) {
    library.report({"msgCantDownload", what.failureMethod, Value(library.Com().popErrorList())});
  } else if (library.error().number != 0) {
    library.Com().errorList += "\r\n" + what.row + ": " + library.error().description;
  }
  library.error().clear();
  return status;
}

std::int16_t downloadEach(Library& library, const std::string& query,
                          const std::function<std::int16_t(const Recordset&)>& download) {
  std::int16_t first = 0;
  const auto rows = library.QDB().database().openRecordset(query);
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t status = download(*rows);
    if (first == 0) first = status;
  }
  return first;
}

std::int16_t downloadTable(Library& library, const std::string& query, const char* failureMethod,
                           const std::function<std::int16_t(const Recordset&)>& download) {
  const std::int16_t status = library.attempt([&] { return downloadEach(library, query, download); });
  if (status != 0) {
    library.report({"msgCantDownload", failureMethod, Value(library.Com().popErrorList())});
  }
  return status;
}

}  // namespace voxa
