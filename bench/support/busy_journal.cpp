#include "support/busy_journal.h"

#include "support/plain_sqlite.h"

namespace voxa::bench {

void fillJournal(const std::string& file, const BusyJournal& journal) {
  const auto text = [](int number) { return std::to_string(number); };
  // A round is one read of every controller. Its rows are spread over the time of the round.
  const std::string round = text(journal.readers * journal.together);
  const std::string rounds = text(journal.rows / (journal.readers * journal.together) + 1);
  const std::string reader = "(n / " + text(journal.together) + " % " + text(journal.readers) + " + 1)";
  const std::string card = "(n * 7919 % " + text(journal.cards) + " + 1)";
  const std::string minute = "((n / " + round + " + (n % " + text(journal.together) + ") * 1.0 / " +
                             text(journal.together) + ") * 525600 / " + rounds + ")";
  PlainSqlite database(file);
  database.run("begin");
  database.run(
      "insert into Journal (\"Date\", StationId, StationName, ReaderId, ReaderName, TransactionType, "
      "CardholderName, TransactionData) with recursive numbers(n) as (select 0 union all select n + 1 from "
      "numbers where n + 1 < " +
      text(journal.rows) + "), rows as (select n, cast(" + minute + " as integer) as m, " + reader +
      " as r, " + card +
      " as c, case when n % 20 < 18 then '00' when n % 20 = 18 then '20' when n % 40 = 19 then '24' else "
      "'10' "
      "end as t from numbers) "
      // 46023 is 1 January 2026.
      "select 46023 + m / 1440 + (m % 1440) * 60 / 86400.0, 1, 'Local', r, 'Reader ' || r, t, "
      "case t when '10' then '' else 'Card ' || c end, "
      "case t when '10' then printf('%08d', c) else '00' || printf('%04d', c) || '00' end from rows");
  database.run("commit");
}

}  // namespace voxa::bench
