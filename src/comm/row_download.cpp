#include "comm/row_download.h"

#include "comm/com.h"
#include "comm/comm_context.h"
#include "comm/reader.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "tables/gen_table.h"

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

std::int16_t sendRow(CommContext& context, GenTable& rows, const RowDownload& what,
                     const Component& component, std::vector<Value>& sent) {
  sent = rows.currentValues();
  requireAddress(context.database(), component);
  return context.Com().sendLines(what.lines(*rows.currentRecordset()), component.type, component.name);
}

// Where a component's lines go. A line where somebody is silent is sent to controller by controller; what
// goes to each of a station covers that.
std::vector<ControllerPlace> placesOf(Database& database, const Component& component) {
  const bool all = component.type == CTActiveStations;
  const auto rows = component.type == CTReader
                        ? database.openRecordset(
                              "parameters pName memo; select StationId as Station, "
                              "ControllerAddress as Address from Readers where Name = pName",
                              {{"pName", component.name}})
                        : database.openRecordset(
                              "parameters pAll bit, pName memo; select Id as Station, 0 as Address "
                              "from Stations where Active = true and (pAll = true or Name = pName)",
                              {{"pAll", all}, {"pName", component.name}});
  std::vector<ControllerPlace> places;
  for (; !rows->eof(); rows->moveNext()) {
    places.push_back({nullToInt(rows->get("Station")), nullToInt(rows->get("Address"))});
  }
  return places;
}

}  // namespace

std::vector<PlannedSend> rowSends(CommContext& context, const Component& component, const std::string& query,
                                  const RowLines& lines) {
  std::vector<PlannedSend> sends;
  if (context.Com().inhibitCom) return sends;
  try {
    const std::vector<ControllerPlace> places = placesOf(context.database(), component);
    for (auto rows = context.database().openRecordset(query); !rows->eof(); rows->moveNext()) {
      const std::vector<std::string> ofRow = lines(*rows);
      for (const ControllerPlace& place : places) sends.push_back({place, ofRow});
    }
  } catch (const Error&) {
    // The download says what is wrong. Until then, what is not announced is put in doubt send by send.
  }
  return sends;
}

std::int16_t downloadRow(CommContext& context, GenTable& rows, const RowDownload& what,
                         const Component& component, std::int16_t params, const Tell& teller) {
  bool nothingToSend = false;
  std::vector<Value> sent;
  std::int16_t status = context.attempt([&]() -> std::int16_t {
    if (rows.openWhere(what.condition)) {
      tell(context, teller, {what.notFoundMnemonic, what.notFoundMethod, Value(what.number)});
      nothingToSend = true;
      return what.notFoundResult;
    }
    if ((params & DLFull) != 0) {
      if (const std::int16_t failed = rows.setFlagsD(true); failed != 0) return failed;
    } else if (!rows.getFlagDSetFound()) {
      nothingToSend = true;
      return 0;
    }
    return sendRow(context, rows, what, component, sent);
  });
  if (nothingToSend) return status;
  if (status == 0) return what.clearsFlags ? rows.clearFlagsOfSent(what.condition, sent) : status;
  if (what.alwaysShowsFailure || (params & DLNoMessage) == 0) {
    tell(context, teller, {"msgCantDownload", what.failureMethod, Value(context.Com().popErrorList())});
  } else if (context.error().number != 0) {
    context.Com().errorList += "\r\n" + what.row + ": " + context.error().description;
  }
  context.error().clear();
  return status;
}

std::int16_t downloadEach(CommContext& context, const std::string& query,
                          const std::function<std::int16_t(const Recordset&)>& download) {
  std::int16_t first = 0;
  const auto rows = context.database().openRecordset(query);
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t status = download(*rows);
    if (first == 0) first = status;
  }
  return first;
}

std::int16_t downloadTable(CommContext& context, const std::string& query, const char* failureMethod,
                           const Tell& teller,
                           const std::function<std::int16_t(const Recordset&)>& download) {
  const std::int16_t status = context.attempt([&] { return downloadEach(context, query, download); });
  if (status != 0) {
    tell(context, teller, {"msgCantDownload", failureMethod, Value(context.Com().popErrorList())});
  }
  return status;
}

}  // namespace voxa
