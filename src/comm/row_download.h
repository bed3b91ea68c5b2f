#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "comm/send_ledger.h"
#include "platform/notice.h"

namespace voxa {

class GenTable;
class CommContext;
class Recordset;

/// The command lines of a row; raises what makes it a row that no line can hold.
using RowLines = std::function<std::vector<std::string>(const Recordset&)>;

/// What tells the downloads of programs, holidays and badge formats apart; all of them send one row by one
/// command file to one component.
struct RowDownload {
  std::string condition;         ///< finds the row
  std::string row;               ///< names it in the error list, "Daily program 7"
  std::int16_t number;           ///< the row's number as a person knows it
  const char* notFoundMnemonic;  ///< message for a missing row,
  const char* notFoundMethod;    ///< its method text,
  std::int16_t notFoundResult;   ///< and the result then
  const char* failureMethod;     ///< method text of "msgCantDownload"
  bool alwaysShowsFailure;       ///< whether DLNoMessage is not heeded
  bool clearsFlags;              ///< whether a successful send clears the row's FlagD columns
  RowLines lines;
};

/// Sends one row when its flags, or DLFull in `params`, say so. 0 when it was sent or nothing had to be; else
/// notFoundResult, the result of the send, or an error's number. A failed row keeps its flags, and so does a
/// row that was changed while it was being sent. Nothing is written of a row that cannot be right, nor to a
/// reader whose address is that of a whole line. What is wrong is told, with DLNoMessage left in
/// `Com.errorList`.
std::int16_t downloadRow(CommContext& context, GenTable& rows, const RowDownload& what,
                         const Component& component, std::int16_t params, const Tell& teller);

/// What a download of all these rows to a component is going to send, for the ledger. query: gives whole
/// rows. It ends before the first row that cannot be right: what is behind it is not announced. Nothing is
/// sent while communications are inhibited.
[[nodiscard]] std::vector<PlannedSend> rowSends(CommContext& context, const Component& component,
                                                const std::string& query, const RowLines& lines);

/// Downloads rows one after the other, whatever becomes of each; the first non-zero result.
/// query: gives the rows; download: sends the current one.
std::int16_t downloadEach(CommContext& context, const std::string& query,
                          const std::function<std::int16_t(const Recordset&)>& download);
/// The same; a failure, of the rows or of their sending, is told once at the end.
/// failureMethod: method text of "msgCantDownload".
std::int16_t downloadTable(CommContext& context, const std::string& query, const char* failureMethod,
                           const Tell& teller, const std::function<std::int16_t(const Recordset&)>& download);

}  // namespace voxa
