#include "help/topics.h"

namespace voxa::cli {

const std::vector<Topic>& topics() {
  static const std::vector<Topic> all = {
      {"first-steps", "From an empty folder to a door that opens",
       R"(An installation is a folder. Every command works in the current one, or in that of --dir. Without the
real driver library beside the program simulated controllers answer, which "sim controller add" makes.

  voxa init
  voxa reader add "Front door" --station Local --address 1 --position 1
  voxa sim controller add --station Local --address 1
  voxa daily add Office --first 08:00-12:00 --second 13:00-18:00
  voxa weekly add Staff --days Office,Office,Office,Office,Office,Never,Never --holidays Never
  voxa group add Employees
  voxa group grant Employees "Front door" --program Staff
  voxa card add "Ada Byron" --code 00012345 --group Employees
  voxa status
  voxa clock
  voxa download

A company to try things on, with simulated controllers:

  voxa --dir trial init --demo-data
  voxa --dir trial access who "Main entrance"
)"},
      {"cards", "Give cards to people, change them, find them",
       R"(A card belongs to an access group, which says what doors it opens and when. What is changed reaches the
controllers with the next download.

  voxa card add "Ann Lee" --code 4711 --group Employees
  voxa card add "Guest 1" --code 4712 --group Employees --until 31/12/2027
  voxa card find lee
  voxa group add Visitors
  voxa card set "Ann Lee" --group Visitors
  voxa download

Many at once, from a table with the columns number, name, code, group:

  voxa import cards people.csv
  voxa export cards all-cards.csv

Whether it opens a door, and why not:

  voxa access check "Ann Lee" "Front door"
  voxa access what "Ann Lee"
)"},
      {"lost-card", "A card was lost or stolen, or its holder has left",
       R"(Take it away at once. The command names the controllers that it could not reach; the next download tries them again:

  voxa card block "Ada Byron"
  voxa plan

It was found:

  voxa card unblock "Ada Byron"
  voxa download

The same person gets a new one:

  voxa card replace "Ada Byron" --code 00A1B2C3
  voxa download

Who tried to use it:

  voxa journal --card "Ada Byron" --since 2026-12-01

The person has left for good:

  voxa card delete "Ada Byron"
)"},
      {"doors", "Lines, controllers and readers; one that is silent or was replaced",
       R"(A station is a line with up to 16 controllers; a reader is a door side at position 1 to 4 of a controller.

  voxa station add Annex --port 2
  voxa reader add "Annex north" --station Annex --address 1 --position 1
  voxa sim controller add --station Annex --address 1
  voxa group grant Employees "Annex north" --program Staff
  voxa download

What the controllers say, and what they miss:

  voxa status
  voxa controller list
  voxa plan --station Annex

A controller was replaced: say so, and send it everything.

  voxa controller replaced --station Annex --address 1
  voxa download
)"},
      {"times", "Hours, days of the week, holidays",
       R"(A daily program is the hours of a day, a weekly program the daily programs of a week and of holidays. Never and Always are there
from the beginning, Office and Staff since the first steps.

  voxa daily add Morning --first 08:00-12:00
  voxa weekly add "Half Friday" --days Office,Office,Office,Office,Morning,Never,Never --holidays Never
  voxa group grant Employees "Front door" --program "Half Friday"
  voxa holiday add "New Year" --date 01/01/2027 --each-year
  voxa download

Other hours for everybody who has them:

  voxa daily set Office --second 13:00-17:00
  voxa download

Whether somebody can come in then:

  voxa access check "Ada Byron" "Front door" --at "01/01/2027 09:00"
)"},
      {"download", "Send what was changed; what to do about what is left",
       R"(Changes are made in the database. A download brings to each controller what it misses:

  voxa plan
  voxa download

It ends with 3 when a controller did not answer. Nothing is lost: the others have theirs, and the plan keeps the rest.

  voxa controller list
  voxa plan --station Local
  voxa --yes download

A line over a telephone is called first:

  voxa station add Branch --port 3 --phone 0123456 --modem modem.ini
  voxa station connect Branch
  voxa download --station Branch
)"},
      {"journal", "What happened at the doors", R"(Controllers keep what happened until they are read:

  voxa read --all
  voxa journal --since 2026-12-24
  voxa journal --since 2026-12-24 --until 2026-12-24 --reader "Front door" --type refused
  voxa journal --card "Ada Byron"

A card that nobody knows was held to a door, here to a simulated one. Its code, to give it to somebody:

  voxa sim swipe --station Local --reader "Front door" --code 00A1B2C3
  voxa card last-unknown --reader "Front door"

For a spreadsheet or another program:

  voxa journal --since 2026-12-01 --csv
  voxa journal --since 2026-12-01 --json

To look at, or to print:

  voxa report month.html --since -30d
)"},
      {"scripts", "Calling voxa from programs: exit status, JSON, questions",
       R"(The exit status is the same in all commands:

  0  done
  1  failed: the reason is on the standard error output
  2  the command was called wrongly
  3  done, with something left that needs a person: a controller did not answer, say

Lists have --json: an array of objects; numbers are numbers, dates are 2026-12-24 or
2026-12-24T18:05:00, what has no value is null.

  voxa card list --json
  voxa access check 1 "Front door" --json
  voxa controller list --json

Without a terminal nobody is asked: a question is answered with the button that does least. These answer beforehand:

  voxa --yes download
  voxa --answer ignore read --all

A statement of the database language on any database file:

  voxa db query "select CardNum, Name from Cardholders order by Name" --json
)"},
      {"backup", "Save the installation, bring it back",
       R"(A copy of the database in one file, while others work:

  voxa db save saved.mdb

Back to it. The controllers keep what they hold: the plan tells what they miss then.

  voxa db restore saved.mdb
  voxa plan
  voxa download

All tables as texts:

  voxa export csv tables
  voxa export sql all.sql
)"}};
  return all;
}

}  // namespace voxa::cli
