#!/bin/bash
# The command from an empty folder to controllers that hold the programs, and what it does with bad input.
# Usage: story.sh PROGRAM
set -u
unset TLXP_SITE
program=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0

plant=plant
voxa() { "$program" --dir "$plant" "$@" </dev/null; }

fail() {
  echo "FAILED: $1"
  sed 's/^/    /' out err 2>/dev/null
  failures=$((failures + 1))
}

# succeeds ARGUMENT...: the command exits 0; its output is in "out" and "err".
succeeds() { voxa "$@" >out 2>err || fail "exit status of: $*"; }
# refuses TEXT ARGUMENT...: the command exits with a failure and says TEXT on standard error.
refuses() {
  local text=$1
  shift
  if voxa "$@" >out 2>err; then
    fail "accepted: $*"
  elif ! grep -qF -- "$text" err; then
    fail "'$text' is not said by: $*"
  fi
}
# shows TEXT: the last command printed it.
shows() { grep -qF -- "$1" out || fail "'$1' is not in the output"; }
count() { voxa "$1" list --json 2>/dev/null | grep -c '"Name"'; }

mkdir plant
refuses "is no installation" daily list
succeeds init
refuses "holds an installation already" init

# The data, in a second station and with names that are not plain ASCII.
succeeds station add Annex --speed 9600
succeeds station list --json
shows '"Port": 2'
shows '"Active": true'
succeeds reader add "Porte été" --station Local --address 1 --position 1
succeeds reader add Garage --station Annex --address 5 --position 1 --type VRMD1
succeeds daily add Office --first 08:00-12:00 --second 13:00-24:00
shows "Daily program 2: Office"
succeeds weekly add Staff --days Office,2,Office,Office,Office,Never,0 --holidays Never
succeeds weekly list
grep -qE '^C +1 +Staff +Mon-Fri Office 08:00-12:00 13:00-24:00, Sat-Sun Never, holidays Never +yes$' out || fail "columns of the weekly list"
grep -q '^TER:5' plant/S002.ini || fail "the driver is not told of the new controller"

# Controllers, download, and what arrived.
succeeds sim controller add --station Local --address 1
succeeds sim controller add --station Annex --address 5 --type VRMD1
refuses "already has" sim controller add --station Annex --address 5
succeeds status
succeeds clock
succeeds status
shows "$(date +%d/%m/%Y)"
succeeds plan --station Annex
shows "daily program 1, 2  new controller"
succeeds download
shows "Annex Controller 5  -  Garage: 3 sent"
succeeds download all
shows "2 controllers hold it all already"
succeeds sim controller show --station Annex --address 5 --json
shows '"08:00-12:00"'
grep -qF '"Days":[2,2,2,2,2,0,0],"Holidays":0' <(tr -d ' \n' <out) || fail "the days of a week"
succeeds log
shows "31020800120013002400"

# A silent controller: named, left out when told so, and caught up with later.
succeeds sim controller fault --station Annex --address 5 --silent
refuses "Annex Controller 5" status
refuses "no clock was set" clock
voxa --yes clock >out 2>err
[ $? = 3 ] && grep -A1 "are not set" err | grep -q "Annex Controller 5" || fail "the clocks of the others are not set"
succeeds log --tail 4
shows "SDDAT(1,0)"
succeeds daily set Office --second 13:00-18:00
refuses "aborted" --answer abort download daily
grep -q "^These controllers do not answer:" err out || fail "nobody says what the controllers do not do"
refuses "stays marked" --yes download daily
succeeds daily list --json
shows '"ToSend": true'
# One of which the driver says nothing is not known to answer.
succeeds sim controller fault --station Annex --address 5 --result-file garbage
for command in status clock "--yes download daily --full"; do
  # shellcheck disable=SC2086
  refuses "Annex Controller 5" $command
done
succeeds sim controller fault --station Annex --address 5 --after 1
refuses "Can't download parameters" download daily --full --station Annex
succeeds sim controller fault --station Annex --address 5 --none
succeeds download daily
succeeds sim controller show --station Annex --address 5
shows "08:00-12:00 13:00-18:00"
succeeds download all --full --reader Garage
succeeds command 31030000240024002400 --station Local
succeeds sim controller show --station Local --address 1
shows "00:00-24:00"
succeeds station speed Annex 19200
succeeds sim controller list
grep -qE '^Annex +5 +VRMD1 +19200' out || fail "the controller did not change its speed"
succeeds status

# Holidays go when every controller has erased them. A badge format is sent reader by reader.
succeeds holiday add Christmas --date 25/12/2026 --each-year
succeeds holiday add Strike --date 2027-05-03
succeeds download holidays
shows "Holidays: 2 sent, 0 unchanged, 0 failed"
succeeds sim controller show --station Annex --address 5 --json
shows '"Date": "--12-25"'
shows '"Date": "2027-05-03"'
succeeds sim controller fault --station Annex --address 5 --silent
refuses "Annex Controller 5" --answer abort holiday delete Strike
refuses "Annex Controller 5" --answer ignore holiday delete Strike
succeeds holiday list
grep -qE '^ *2 +Strike +03/05/2027 +no +03/05/2027 +yes$' out || fail "a holiday that is not erased everywhere"
succeeds sim controller fault --station Annex --address 5 --none
succeeds holiday delete 2
succeeds holiday list
grep -q Strike out && fail "a deleted holiday is listed"
succeeds sim controller show --station Annex --address 5
grep -q '03/05/2027' out && fail "a deleted holiday is held"
succeeds badge list --json
[ "$(cat out)" = "[]" ] && grep -q "badge create" err || fail "an installation without badge formats"
succeeds badge create
succeeds badge add "Site cards" --techno 5 --site-position 2 --site-size 4 --card-position 6 --site 1A2F
succeeds download badge "Site cards" --station Annex
shows "Badge format Site cards: 1 sent, 0 unchanged, 0 failed"
succeeds download badge Default --reader Garage
shows "0 sent, 1 unchanged"
succeeds sim controller show --station Annex --address 5
grep -qE '^ *1 +108 +2 +4 +6 +8 +1:2\?0000$' out || fail "the badge format of the controller"
succeeds badge set 0 --name Factory --site ab --system
succeeds badge default
succeeds badge list
grep -qE '^ *0 +Default +0 +0 +8 +0 +0 +00000000 +no +yes$' out || fail "the default badge format"

# Bad input changes nothing.
stations=$(count station)
refuses "from 1 to 16" reader add Side --station Local --address 70000 --position 1
refuses "from -32768 to 32767" daily set 70000 --first none
refuses "a whole number" station add Side --port two
refuses "from 1 to 16" reader add Side --station Local --address 17 --position 1
refuses "Can't find station Nowhere" download all --station Nowhere
refuses "Can't find daily program" weekly set Staff --days Ofice
refuses "A mandatory field was not filled" station add ""
refuses "up to 50 characters" station add "$(printf 'n%.0s' {1..51})"
refuses "already in use" daily add office --first none
refuses "already in use" reader add Twin --station Local --address 1 --position 1
refuses "no time of day" daily set Office --first 8:00-12:00
refuses "ends before it starts" daily set Office --first 12:00-08:00
refuses "is no date" holiday add Never --date 31/02/2027
refuses "cannot tell the year" holiday add Late --date 01/01/2090
refuses "already in use" holiday add christmas --date 24/12/2026
refuses "from 0 to 32" badge set 0 --card-position 33
refuses "hexadecimal" badge set 0 --site 12G4
refuses "--four-zones" daily set Office --third 18:00-19:00
refuses "is used by the active station" station add Third --port 2
refuses "no apostrophe" reader add "Porte d'été" --station Local --address 2 --position 1
refuses "no apostrophe" station add "L'annexe"
refuses "Can't find station" download all --station "x'; delete * from Stations; --"
[ "$(count station)" = "$stations" ] || fail "bad input changed the number of stations"
voxa nonsense >out 2>err && fail "accepted a command that there is not"

# Four intervals a day.
succeeds --four-zones daily set Office --third 19:00-20:00
refuses "two intervals a day" --four-zones download daily
succeeds --four-zones download --change-intervals
succeeds sim controller show --station Local --address 1
shows "08:00-12:00 13:00-18:00 19:00-20:00"
succeeds download --change-intervals

# Copies of the database; the copy is not overwritten by the restore.
succeeds db save copy.mdb
succeeds daily add Extra --first none
succeeds daily set Office --second 13:00-19:00
succeeds download
refuses "needs --yes" db restore copy.mdb
succeeds daily list
shows Extra
succeeds --yes db restore copy.mdb
grep -qE "Local Controller 1 .* send +daily program 2 +changed" out || fail "a restore does not tell what the controllers miss"
succeeds daily list
grep -q Extra out && fail "the restored database is not the copy"
refuses "not restored" --yes db restore /dev/null
succeeds daily list
# No command writes one of its files over another, by whatever name.
ln -s plant/KRV.mdb link.mdb
ln plant/Journal.MDB hard.mdb
for file in plant/krv.MDB link.mdb hard.mdb plant/I18N.MDB 'plant\S001.ini' plant/site/new plant/../plant/J.DAT; do
  refuses "belongs to the installation" --yes export cards "$file"
  refuses "belongs to the installation" --yes db save "$file" --force
  refuses "belongs to the installation" --yes db restore copy.mdb --save-first "$file"
done
refuses "belongs to the installation" --yes db restore hard.mdb
refuses "--force" db save copy.mdb
succeeds db save copy.mdb --force

# A statement reads any database file and leaves it as it was, an older one, too; with --write it changes rows.
printf '\0\0\0\0' | dd of=copy.mdb bs=1 seek=60 conv=notrunc 2>/dev/null
cp copy.mdb plant/KRV.mdb
for file in copy.mdb plant/KRV.mdb; do
  cp "$file" before
  succeeds db query "select * from Stations" --file "$file"
  refuses "--write" db query "update Stations set Name = 'X'" --file "$file"
  cmp before "$file" || fail "a query has changed $file"
done
succeeds db query "Select s.Id, r.Id, s.Active, Phone, h.Date, -1.5 as x, 2 as x from Stations s, Readers r, Holidays h
  where r.StationId = s.Id and r.Name = 'Garage' and h.Name = 'Christmas'" --json
tr -d ' \n' <out | grep -qF '[{"s.Id":2,"r.Id":2,"Active":true,"Phone":null,"Date":"2026-12-25","x":-1.5,"x_2":2}]' ||
  fail "the types of a query"
succeeds db query "select -1 as n, '=1+1' as a, 'b, \"' as b, Active from Stations where Id = 2" --csv
[ "$(cat out)" = $'n,a,b,Active\r\n-1,\'=1+1,"b, """,yes\r' ] || fail "a query as CSV"
cmp before plant/KRV.mdb || fail "a query has changed the installation"
refuses "no table or query" db query Nowhere
refuses "with --write only" db query "drop table Stations"
refuses "no database of this system" db query Stations --file "$program"
refuses "without --write" db query Stations --write
succeeds db query "update Readers set Name = Name & '!' where Name like 'gar*'" --write
shows "1 row changed"
succeeds db query "update Strings set Width = 3 where Mnemonic = 'none'" --write --file plant/I18N.MDB
ln plant/Ledger.MDB other.mdb
for file in plant/Ledger.MDB other.mdb; do
  refuses "is believed" db query "delete from Things" --write --file "$file"
done
plant=. refuses "--dir" db query "delete from Readers" --write --file plant/KRV.mdb
succeeds db query Readers --json
shows '"Name": "Garage!"'

# Cards: who loses a door is erased there before the database forgets that it was there.
plant=doors
# holds NUMBERS STATION ADDRESS: the cards that a controller has, each followed by a blank.
holds() {
  voxa sim controller show --station "$2" --address "$3" --show-pins >out 2>err
  local held
  held=$(awk '/^Cards$/ { getline; on = 1; next } /^$/ { on = 0 } on { printf "%s ", $1 }' out)
  [ "$held" = "$1" ] || fail "$2 $3 holds '$held' instead of '$1'"
}
succeeds init
succeeds station add Annex
succeeds reader add Front --station Local --address 1 --position 1
succeeds reader add "Porte été" --station Local --address 1 --position 2
succeeds reader add Garage --station Annex --address 5 --position 1 --type VRMD1
succeeds sim controller add --station Local --address 1
succeeds sim controller add --station Annex --address 5 --type VRMD1
succeeds group add "Day & \"Co\""
succeeds group add Cars
succeeds group grant 1 Front --door "Porte été" --door Garage --program Always
succeeds group grant Cars Garage --program 0
succeeds lift add Top --station Local --address 1 --num 3
succeeds lift grant 1 Top
succeeds card batch --first-number 10 --first-code 500 --count 3 --group 1
succeeds card add "O'Neil, \"Al\"" --code ab12 --group 1 --pin 42 --until 31/12/2031 --credit 5 --supervisor
succeeds card list
shows 0000AB12
grep -q 0042 out && fail "a personal code is shown unasked"
succeeds download all
holds "1 10 11 12 " Local 1
grep -qE '^ *1 +0000:;12 +0 +1 2 +0042 +yes +31/12/2031 +5 +3$' out || fail "the whole card"
succeeds sim controller fault --station Local --address 1 --result-file garbage
refuses "Local Controller 1" card set 10 --group Cars
succeeds sim controller fault --station Local --address 1 --silent
refuses "Local Controller 1" card set 10 --group Cars
refuses "Local Controller 1" card set 10 --number 9
refuses "Local Controller 1" lift revoke 1 Top
refuses "Local Controller 1" group delete 1 --move-cards-to Cars
succeeds sim controller fault --station Local --address 1 --after 1
refuses "Can't send command" card set 10 --group Cars
succeeds sim controller fault --station Local --address 1 --none
succeeds card list --group 1 --json
[ "$(grep -c '"Number"' out)" = 4 ] || fail "a refused change left its trace"
holds "1 10 11 12 " Local 1
succeeds card set 10 --group Cars
holds "1 11 12 " Local 1
succeeds card set "o'neil, \"al\"" --number 20
holds "11 12 " Local 1
succeeds lift revoke 1 Top
holds "" Local 1
succeeds download all
holds "11 12 20 " Local 1
grep -qE '^ *20 +0000:;12 +0 +1 2 +0042 +yes +31/12/2031 +5 +-$' out || fail "the whole card under its new number"
succeeds group revoke 1 Front
succeeds station set Annex --inactive
refuses "the line is not in use" group revoke Cars Garage
succeeds station set Annex --active
succeeds download groups
holds "11 12 20 " Local 1
grep -qE '^ *11 +00000501 +0 +2 ' out || fail "the revoked door is open"
succeeds group revoke 1 Garage
holds "10 " Annex 5

# Deleting: a controller that does not answer stays marked; nobody else gets the number until it has erased.
refuses "is used by" group delete 1
succeeds sim controller fault --station Local --address 1 --silent
refuses "aborted" card delete 11
refuses "still hold the card" --answer ignore card delete 11
refuses "Card number already in use" card add New --number 11 --code 77 --group 1
succeeds sim controller fault --station Local --address 1 --none
holds "11 12 20 " Local 1
succeeds download cards
holds "12 20 " Local 1
succeeds card invalidate 12 --reader Front
holds "20 " Local 1
succeeds download cards --station Local --full
holds "12 20 " Local 1
succeeds sim controller fault --station Local --address 1 --silent
refuses "were not told, which may still open to it" card block 12
succeeds sim controller fault --station Local --address 1 --none
succeeds card block 12
holds "20 " Local 1
succeeds card replace 12 --code 4099
holds "12 20 " Local 1
refuses "Card number already in use" card batch --first-number 12 --first-code 900 --count 3 --group 1
grep -q "DLL Error" err && fail "a driver that answers has left an error of the system"
succeeds group list
shows "Porte été (Always)"
succeeds lift list
shows "Top"
succeeds reader list --json
shows "Porte été"
succeeds card add New --number 11 --code 77 --group 0 --until 1/1/2027
succeeds sim controller add --station Annex --address 6
succeeds reader add Side --station Annex --address 6 --position 1
holds "11 " Annex 6
grep -q "01/01/2027" out || fail "a new reader's controller does not know the last day"
refuses "from 1 to 9999" card add Far --number 10000 --code 78 --group 0
refuses "not zero" card add Zero --code 0 --group 0
refuses "Card code already in use" card add Twin --code 0077 --group 0
refuses "another century" card set New --until 1/1/2090
refuses "Card code already in use" card add Twin --code "0000:;12" --group 0
succeeds group delete 1 --move-cards-to Cars
holds "" Local 1

# The whole database in other forms and back, and an installation of another one's files.
refuses "ends in .sql" export sql all.txt
succeeds export sql all.sql
succeeds db convert all.sql again.mdb
refuses "again.mdb already" db convert all.sql again.mdb
refuses "Could not find" db convert none.mdb unmade.mdb
succeeds export sql again.sql --file again.mdb
cmp -s all.sql again.sql || fail "a database does not come back from its statements"
sed -i '$d' again.sql
refuses "the file ends" db convert again.sql cut.mdb
[ -e cut.mdb ] && fail "half a database is made"
succeeds export csv tables
grep -q "Porte été" tables/Readers.csv || fail "a table for spreadsheets lacks a row"
from=$plant plant=bought
refuses "no table Stations" import mdb "$from/Journal.MDB"
succeeds import mdb "$from/KRV.mdb" --journal "$from/Journal.MDB" --dry-run
[ -e bought/KRV.mdb ] && fail "a trial leaves an installation"
succeeds import mdb "$from/KRV.mdb" --journal "$from/Journal.MDB" --texts "$from/I18N.MDB"
refuses "holds an installation" import mdb "$from/KRV.mdb"
succeeds plan
shows "nothing is known of it"
plant=$from

# Tables of cards: all or nothing, and out again as they came in.
printf '\xEF\xBB\xBFNumber,name,code,group,until\r\n40,Good,C1,Cars,\r\n40,Twin,C2,Cars,\r\n,Open,"C3,Cars,\n' >bad.csv
printf ',No code,,Cars,\n,"Two\nlines",C4,Cars,\n,Few,C5\n,Day,C6,Cars,31/02/2027\n,中,C7,Cars,\n' >>bad.csv
succeeds export cards before.csv
refuses "7 bad lines" import cards bad.csv
for line in "3: Card number already in use (40: line 2)" "4: text behind" "5: A mandatory" "6: a name is one line" \
  "8: 3 fields" "9: the last day" "10: '中' (U+4E2D)"; do
  grep -qF "line $line" err || fail "not named: line $line"
done
refuses "--force" export cards before.csv
succeeds export cards after.csv
cmp before.csv after.csv || fail "a bad table was imported in part"
succeeds export cards pins.csv --show-pins
succeeds card list --json --show-pins
mv out list
plant=second
succeeds init
succeeds group add Cars
succeeds import cards pins.csv
succeeds card list --json --show-pins
cmp <(sed 's/"ToSend": false/"ToSend": true/' list) out || fail "the imported cards differ"
succeeds import cards pins.csv --update
shows "Nothing is to be changed"
plant=plant

# From a card at a reader to the journal; a read that breaks off loses nothing.
succeeds reader add Barrier --station Annex --address 7 --position 2
succeeds sim controller add --station Annex --address 7
succeeds group add Crew
succeeds group grant Crew Barrier --program 0
succeeds card add "Zoë O'Quill" --number 700 --code 4B11 --group Crew
succeeds download all
swipe() { succeeds sim swipe --station Annex --reader Barrier "$@"; }
swipe --card 700 --at "2026-12-24 18:05"
shows "granted"
refuses "is not on the station Local" sim swipe --station Local --reader Barrier --card 700
swipe --code 12AF --at "$(date '+%Y-%m-%d %H:%M')"
succeeds card last-unknown --reader Barrier
[ "$(cat out)" = 000012AF ] || fail "the code of the unknown card"
refuses "Can't find a new card code" card last-unknown --reader Barrier
swipe --card 700 --at "2026-12-24 18:06"
swipe --card 700 --at "2026-12-24 18:07"
succeeds sim controller fault --station Annex --address 7 --cut 1
refuses "Annex - 7: Can't transfer" read
shows "1 transactions added"
succeeds sim controller fault --station Annex --address 7 --none
succeeds read --station Annex
shows "2 transactions added"
succeeds read --reader Barrier
shows "0 transactions added"
# One silent controller of two: the other's transaction comes once.
succeeds sim controller fault --station Annex --address 5 --silent
swipe --card 700 --at "2026-12-25 18:08"
for added in 1 0 0; do
  refuses "Annex Controller 5" read --station Annex
  shows "$added transactions added"
done
succeeds sim controller fault --station Annex --address 5 --none
succeeds journal --since 24/12/2026 --until 2026-12-24 --reader barrier --card 0700 --type granted --json
[ "$(grep -cE '"Date": "2026-12-24T18:0[567]:00"' out)" = 4 ] || fail "transactions were lost, or others are shown"
shows "\"Cardholder\": \"Zoë O'Quill\""
succeeds journal --type refused --csv
[ "$(wc -l <out)" = 1 ] || fail "a transaction of another type is shown"
refuses "Can't find reader" journal --reader Barier
succeeds journal --person "zoë o'quill" --since=-9999d --until -1d --last 1
succeeds journal --person "zoë o'quill" --last 1
[ "$(cat out)" = "25/12/2026 18:08  Zoë O'Quill, Barrier, granted" ] || fail "the last thing that a person did"
# The report is written where the person is, and over no file unless told.
succeeds report month.html --since 2026-12-24 --until 2026-12-24 --door barrier --csv figures
shows "on 24 December 2026"
head -n 1 "figures/doors.csv" | grep -q "^Door,Presentations" || fail "the figures of the report"
refuses "not found" report figures.html --csv nodir/figures
refuses "different names" report figures.html --csv ./figures.html
[ -e figures.html ] && fail "a report that failed leaves its page"
refuses "--force replaces it" report month.html
refuses "--force replaces it" report other.html --csv figures

# Old transactions leave the journal and come back; the archive has nothing that is in neither.
refuses "there is no file" journal restore nothing.mdb
refuses "is no saved journal" journal restore .
refuses "there is no file" journal verify --also nothing.mdb
refuses "there is no folder" journal save /nowhere/j.mdb --force
refuses "needs --yes" journal delete --before 25/12/2026
succeeds journal verify
succeeds --yes journal delete --before 25/12/2026
succeeds journal --until 24/12/2026
[ -s out ] && fail "deleted transactions are shown"
succeeds journal verify
shows "0 missing"
succeeds --yes journal restore "$(ls "$plant"/Backup/Journal*.MDB)"
succeeds journal --card 700 --type granted
[ "$(wc -l <out)" = 5 ] || fail "a restore loses transactions or doubles them"

# A new controller gets all programs and holidays. Two sides of one door are told of, and so is one that stays shut.
succeeds sim controller add --station Annex --address 9
succeeds reader add Lab --station Annex --address 9 --position 1
succeeds group grant Crew Lab --program Staff
succeeds holiday add "New year" --date 01/01/2027 --each-year
succeeds download all
succeeds sim controller show --station Annex --address 9
shows "01/01 every year"
grep -qE '^C +1 +2 2 2 2 2 0 0, holidays 0' out || fail "a new controller lacks a weekly program"
succeeds reader add "Lab out" --station Annex --address 9 --position 3
succeeds group grant Crew Lab --program Staff
grep -q "Crew, Annex Controller 9: Lab out opens too" err || fail "the other side of a door opens without a word"
succeeds group list
shows "Lab (Staff), Lab out (Staff, the other side)"
succeeds group grant Crew "Lab out" --program Always
grep -q "Crew, Annex Controller 9: Lab, Lab out stays shut" err || fail "a door is shut without a word"
succeeds group list
shows "Lab (stays shut), Lab out (stays shut)"
succeeds group revoke Crew "Lab out"

# A card that was erased comes back whole; one that gets another code is erased under the old one first.
succeeds card add Old --number 800 --code 800 --group Crew --until 1/1/2026
succeeds download all
expired() {
  swipe --card 800 --at "2026-12-24 18:05"
  shows "last valid day is past"
}
succeeds card invalidate 800
succeeds group grant Crew Barrier --program Always
succeeds download groups --full
expired
succeeds sim controller fault --station Annex --address 9 --after 1
refuses "Can't send command" card delete 800
succeeds sim controller fault --station Annex --address 9 --none
succeeds download groups --full
expired
succeeds sim controller fault --station Annex --address 9 --silent
refuses "Annex Controller 9" card set 800 --code 801
succeeds sim controller fault --station Annex --address 9 --none
succeeds card set 800 --code 801
swipe --code 800
shows "no card of this code"

# Numbers are whole, names one line, and what a terminal obeys or a spreadsheet calculates goes no further.
for wrong in "card invalidate 1.5" "card set 1 --pin 1234.5" "reader add X --station Local --address 2.5 --position 1" \
  "card batch --first-number 300 --first-code 300 --count 2.5 --group Crew"; do
  refuses "number" $wrong
done
grep -q "1234.5" err && fail "a personal code is repeated"
refuses "split it at midnight, as 22:00-24:00 and 00:00-06:00" daily set Office --first 22:00-06:00
plant=doors
refuses "lift output 1 (Top) has it" lift add top --station Annex --address 5 --num 9
plant=plant
for kind in "station add" "group add" "daily add --first none" "reader add --station Local --address 3 --position 1" \
  "card add --code 77A --group Crew"; do
  refuses "control characters" $kind $'a\e]0;b'
  refuses "control characters" $kind $'a\xc2\x9bb'
done
succeeds card add "=1+1" --number 900 --code 900 --group Crew
succeeds card add "'-1" --number 901 --code 901 --group Crew
succeeds export cards formulas.csv
grep -q "^900,'=1+1," formulas.csv || fail "a spreadsheet would calculate a name"
plant=third
succeeds init
succeeds group add Crew
sed -i '1!{/,Crew,/!d}' formulas.csv
succeeds import cards formulas.csv
succeeds card list
shows "'-1"
grep -q " =1+1 " out || fail "a name does not come back as it was"
printf 'nu\e[31mmber,name\r\n' >escape.csv
script -qec "'$program' --dir third group add 'Café €'" /dev/null >out </dev/null
shows "Café €"
script -qec "'$program' --dir third import cards escape.csv" /dev/null >out </dev/null && fail "accepted: escape.csv"
shows "nu?[31mmber"
plant=plant

# A door that goes: who opens it is named, its controller erases the cards, and what is gone need not answer.
succeeds reader add Hatch --station Annex --address 10 --position 1
succeeds group grant Crew Hatch --program Always
refuses "Crew (" reader delete Hatch
succeeds reader show hatch --json
shows '"Group": "Crew"'
succeeds reader delete Hatch --revoke
refuses "reader Barrier" station delete Annex

# The exit status: 0 done, 1 failed, 2 wrong usage, 3 done, with something left for a person.
status() { # EXPECTED ARGUMENT...
  local expected=$1
  shift
  voxa "$@" >out 2>err
  local got=$?
  [ $got = "$expected" ] || fail "status $got instead of $expected: $*"
}
status 0 --version
status 2 card nonsense
grep -q "Commands of voxa card: .*add" err || fail "the commands are not named"
voxa card list >/dev/full 2>err && fail "output that cannot be written is a success"
succeeds sim controller fault --station Annex --address 9 --silent
status 3 status
status 3 --yes download daily --full
status 3 read --station Annex
succeeds sim controller fault --station Annex --address 9 --after 1
status 1 download daily --full --station Annex
succeeds sim controller fault --station Annex --address 9 --none
succeeds download all
succeeds station set Annex --inactive
succeeds card set 700 --pin 77
status 3 download cards
status 3 download
shows "1 missing: its line is not in use"
succeeds plan
grep -qE "Annex Controller .*not in use.* send +card 700 +changed" out || fail "the plan forgets the inactive line"
succeeds station set Annex --active
succeeds download --card 700
shows "1 sent"
succeeds sim controller replace --station Annex --address 9
status 3 status
grep -q "'voxa controller check'" err || fail "a status does not tell of a clock that is at its start"
status 3 controller check
grep -q "probably replaced" err || fail "a replaced controller is not noticed"
succeeds controller replaced --station Annex --address 9
succeeds plan --json
grep -q '"Station": "Annex".*"Reason": "new controller"' <(tr -d '\n' <out) || fail "nothing is planned for a replaced controller"
succeeds controller list
status 1 station connect Annex
grep -q "no telephone number" err || fail "a line without a telephone number is called"
succeeds download
succeeds group grant Crew "Lab out" --program Always
succeeds download all

# Who may open what: 0 when it opens and the controller knows, else 3.
succeeds access check 700 barrier --at "2026-12-24 18:05"
shows "24/12/2026 18:05: Zoë O'Quill (card 700) opens Barrier: always"
shows "may ask for the personal code"
shows "Known at Annex Controller 7: yes"
status 3 access check "zoë o'quill" Lab
shows "under two weekly programs"
succeeds card set 700 --until 1/1/2026
status 3 access check 700 Barrier --json
shows '"ControllerOpens": true'
succeeds access what 700
grep -qE "^ *700 .* Barrier +no +its last valid day is past +not yet \(its last valid day\); it opens the door$" out ||
  fail "a door that still opens"
succeeds access who Barrier
shows "it opens the door"
refuses "Can't find reader" access who Barier
refuses "is no date" access check 700 Barrier --at noon

# A folder that others can write, or a link in it, is nobody's to work in.
mkdir -m 777 open
plant=open
refuses "chmod o-w" init
chmod 770 open
refuses "--trust-group" init
succeeds --trust-group init
plant='pl\ant'
mkdir "$plant"
succeeds init
[ -e 'pl\ant/KRV.mdb' ] || fail "an installation is in another folder than the one named"

# What the help tells to type does something in a folder that has taken the first steps.
for topic in cards lost-card doors times download journal scripts backup; do
  mkdir "$folder/help-$topic" && cd "$folder/help-$topic" || exit 1
  printf 'number,name,code,group\n50,Eve,C5,Employees\n' >people.csv
  while read -r line; do
    eval "${line/voxa/\"\$program\" --yes}" </dev/null >out 2>err
    [[ $? = [03] ]] || fail "help $topic: $line"
  done < <("$program" help first-steps | grep "^  voxa"; "$program" help "$topic" | grep "^  voxa")
  cd "$folder" || exit 1
done
"$program" help journal save | grep -q "Usage: voxa journal save" || fail "the help of a command named as a topic"

"$program" demo story >out 2>err </dev/null || fail "the demonstration"
shows "Every controller holds what the database says."
shows "2000 presentations, 2000 rows in the journal, 0 differences."
grep -qF "Can't download parameters" err || fail "the demonstration shows no message"
"$program" demo story >out 2>err </dev/null && fail "the demonstration used a folder that is not empty"
mkdir temporary
TMPDIR=$PWD/temporary timeout -s INT 1 "$program" demo >out 2>err </dev/null
[ -z "$(ls temporary)" ] || fail "an interrupted demonstration leaves its folder"

echo "$failures failures"
[ "$failures" = 0 ]
