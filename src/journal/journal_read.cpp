// Reading on request: from a controller's memory to a cleared memory.

#include <optional>

#include "access/access_context.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/line_span.h"
#include "journal/journal.h"
#include "journal/journal_files.h"
#include "platform/database/database.h"
#include "platform/files.h"

namespace voxa {

namespace {

constexpr const char* cantTransfer = "msgCantTransferTransac";

}  // namespace

std::optional<ControllerPlace> Journal::sourceOf(ComponentType compType, const std::string& compName) {
  ControllerPlace source{0, CmToEachController};
  bool found = false;
  if (compType == CTReader) {
    found = access_.Readers().getControllerAddr(compName, source.station, source.address) == 0;
  } else if (compType == CTStation) {
    source.station = access_.Stations().getId(compName);
    found = source.station != -1;
  }
  return found ? std::optional(source) : std::nullopt;
}

std::string Journal::takeIn(const ControllerPlace& source) {
  const std::string baseName = makeFileName(source);
  rotateFile(baseName);
  std::string undecoded;
  context_.showLater([&] { undecoded = decodeFile(source.station, baseName); });
  archiveFile(baseName);
  return undecoded;
}

std::int16_t Journal::transfer(const Route& route) {
  Com& com = access_.Com();
  // Another process that reads the same memory would take the dump for its own, or clear what this one has
  // not read yet.
  const LineSpan lines(context_);
  std::int16_t partial = 0;  // the result of a read that broke off but left a file
  bool ended = false;        // there is nothing to take in
  std::string undecoded;
  std::int16_t result = context_.attempt([&]() -> std::int16_t {
    lines.require();
    if (context_.engine().inTransaction()) {
      // Someone else would decide whether the rows stay, after the controller was cleared.
      throw Error(err::dbInvalidArgument, "Transactions cannot be read inside a database transaction");
    }
    if (const std::int16_t failed = route.send(CmResetReadPointer); failed != 0) return failed;
    setAsideDump();
    if (const std::int16_t failed = route.send(cmReadMemory); failed != 0) {
      if (!files::exists(dumpFile)) return failed;
      partial = failed;
      route.fail(cantTransfer, com.popErrorList());
    }
    const std::optional<ControllerPlace> source = route.source();
    if (!source) {
      ended = true;
      return -1;
    }
    ended = removeEmptyDump();
    if (!ended) undecoded = takeIn(*source);
    return 0;
  });
  if (ended) return result != 0 ? result : partial;
  if (result != 0) {
    route.fail(cantTransfer, com.popErrorList());
    return result;
  }
  // What was not read or not decoded of a broken read is still on the controller, and was told of.
  if (partial != 0) return partial;
  if (!undecoded.empty()) route.fail(cantTransfer, undecoded);
  result = route.send(CmSendClear);
  if (result != 0) {
    route.fail("msgCantDeleteBuf", com.popErrorList());
    return result;
  }
  return undecoded.empty() ? std::int16_t{0} : std::int16_t{err::typeMismatch};
}

std::int16_t Journal::readTransactions(ComponentType compType, const std::string& compName) {
  Com& com = access_.Com();
  if (!isKnown(compType)) return -1;
  if (!com.TestCom(compType, compName) && !com.inhibitCom) {
    // Of a reader there is nothing to read when its one controller does not answer.
    if (com.MsgChooseAbort(compType, compName) || compType == CTReader) return -1;
  }
  return readTested({compType, compName}, showing(context_));
}

std::int16_t Journal::readTested(const Component& component, const Tell& teller) {
  return transfer({.send =
                       [&](ComCommandsEnum command) {
                         return access_.Com().sendToComp(command, component.type, component.name);
                       },
                   .source = [&] { return sourceOf(component.type, component.name); },
                   .fail =
                       [&](const char* mnemonic, const std::string& why) {
                         tell(context_, teller, {mnemonic, "Journal.readTransactions", Value(why)});
                       }});
}

std::string Journal::getLastCardCode(const std::string& readerName) {
  // What it shows is all there is to say about its failure: an older card may still be in the journal.
  (void)readTransactions(CTReader, readerName);
  return takeLastCardCode(readerName, showing(context_));
}

std::string Journal::takeLastCardCode(const std::string& readerName, const Tell& teller) {
  std::string code;
  const std::int16_t status = context_.attempt([&] {
    const auto last = rows(
        "SELECT TOP 1 Journal.TransactionType, Journal.TransactionData From Journal "
        "WHERE (((Journal.TransactionType)='10' Or (Journal.TransactionType)='12' Or "
        "(Journal.TransactionType)='11' Or (Journal.TransactionType)='13') AND "
        "((Format([Date],'dd/mm/yyyy'))=Format(Now(),'dd/mm/yyyy'))) and ReaderName = '" +
        readerName + "' ORDER BY Journal.Date DESC, Journal.Id DESC");  // the later one of a minute
    if (last->eof()) return;
    const Value data = last->get("TransactionData");
    last->remove();
    if (!data.isNull()) code = data.toText();
  });
  if (status != 0 || code.empty()) tell(context_, teller, {"msgCantReadCardCode", "Journal.getLastCardCode"});
  return code;
}

}  // namespace voxa
