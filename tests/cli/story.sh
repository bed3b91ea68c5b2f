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

voxa() { "$program" --dir plant "$@" </dev/null; }

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
succeeds reader add "Porte d'été" --station Local --address 1 --position 1
succeeds reader add Garage --station Annex --address 5 --position 1 --type VRMD1
succeeds daily add Office --first 08:00-12:00 --second 13:00-24:00
shows "Daily program 2: Office"
succeeds weekly add Staff --days Office,2,Office,Office,Office,Never,0 --holidays Never
succeeds weekly list
grep -qE '^C +1 +Staff +2 +2 +2 +2 +2 +0 +0 +0 +yes$' out || fail "columns of the weekly list"
grep -q '^TER:5' plant/S002.ini || fail "the driver is not told of the new controller"

# Controllers, download, and what arrived.
succeeds sim controller add --station Local --address 1
succeeds sim controller add --station Annex --address 5 --type VRMD1
refuses "already has" sim controller add --station Annex --address 5
succeeds status
succeeds download all
shows "Daily programs: 2 sent, 0 unchanged, 0 failed"
succeeds download all
shows "Weekly programs: 0 sent, 1 unchanged, 0 failed"
succeeds sim controller show --station Annex --address 5 --json
shows '"Intervals": "08:00-12:00 13:00-24:00"'
shows '"Days": "2 2 2 2 2 0 0, holidays 0"'
succeeds log
shows "31020800120013002400"

# A silent controller: named, left out when told so, and caught up with later.
succeeds sim controller fault --station Annex --address 5 --silent
refuses "Annex Controller 5" status
succeeds daily set Office --second 13:00-18:00
refuses "aborted" --answer abort download daily
refuses "stays marked" --yes download daily
succeeds daily list --json
shows '"ToSend": true'
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

# Bad input changes nothing.
stations=$(count station)
refuses "Error 6" reader add Side --station Local --address 70000 --position 1
refuses "Error 6" daily set 70000 --first none
refuses "Error 13" station add Side --port two
refuses "from 1 to 16" reader add Side --station Local --address 17 --position 1
refuses "Can't find station Nowhere" download all --station Nowhere
refuses "Can't find daily program" weekly set Staff --days Ofice
refuses "A mandatory field was not filled" station add ""
refuses "DB Error 3163" station add "$(printf 'n%.0s' {1..51})"
refuses "already in use" daily add office --first none
refuses "already in use" reader add Twin --station Local --address 1 --position 1
refuses "no time of day" daily set Office --first 8:00-12:00
refuses "ends before it starts" daily set Office --first 12:00-08:00
refuses "--four-zones" daily set Office --third 18:00-19:00
refuses "is used by the active station" station add Third --port 2
refuses "Error" download all --full --reader "Porte d'été"
refuses "Can't find station" download all --station "x'; delete * from Stations; --"
[ "$(count station)" = "$stations" ] || fail "bad input changed the number of stations"
voxa nonsense >out 2>err && fail "accepted a command that there is not"

# Four intervals a day.
succeeds --four-zones daily set Office --third 19:00-20:00
succeeds --four-zones download daily
succeeds sim controller show --station Local --address 1
shows "08:00-12:00 13:00-18:00 19:00-20:00"

# Copies of the database; the copy is not overwritten by the restore.
succeeds db save copy.mdb
succeeds daily add Extra --first none
succeeds db restore copy.mdb
succeeds daily list
grep -q Extra out && fail "the restored database is not the copy"
refuses "not restored" db restore plant/COM.LOG
succeeds daily list

"$program" demo story >out 2>err </dev/null || fail "the demonstration"
shows "Every controller holds what the database says."
grep -qF "Can't download parameters" err || fail "the demonstration shows no message"
"$program" demo story >out 2>err </dev/null && fail "the demonstration used a folder that is not empty"

echo "$failures failures"
[ "$failures" = 0 ]
