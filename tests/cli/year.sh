#!/bin/bash
# A year of a company that has three stations, twelve doors, five access groups and 300 people, by commands alone.
# Usage: year.sh PROGRAM
set -u
unset TLXP_SITE
program=$(realpath "$1")
folder=$(mktemp -d)
[ -n "${KEEP:-}" ] || trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0
year=$(date +%Y)
soon=$(date -d '+10 days' +%d/%m/%Y)
monday=$(date -d 'next monday' +%d/%m/%Y)
today=$(date +%d/%m/%Y)

voxa() { "$program" --dir plant "$@" </dev/null; }
fail() {
  echo "FAILED ($month): $1"
  sed 's/^/    /' out err 2>/dev/null
  failures=$((failures + 1))
}
# ends STATUS ARGUMENT...: the command ends with that status; its output is in "out" and "err".
ends() {
  local wanted=$1 status=0
  shift
  voxa "$@" >out 2>err || status=$?
  [ "$status" = "$wanted" ] || fail "status $status instead of $wanted: $*"
}
does() { ends 0 "$@"; }
# refuses TEXT ARGUMENT...: the command fails, and says TEXT.
refuses() {
  local text=$1
  shift
  ends 1 "$@"
  grep -qF -- "$text" err || fail "'$text' is not said by: $*"
}
says() { grep -qF -- "$1" out err || fail "'$1' is not said"; }
silent() { ! grep -qF -- "$1" out || fail "'$1' is said"; }
# rows: how many objects the last JSON list has.
rows() { grep -c '^  {' out; }
isRows() { [ "$(rows)" = "$1" ] || fail "$(rows) rows instead of $1"; }
# opens yes|no CARD DOOR MOMENT: what the installation says of it.
opens() {
  local wanted=$1
  shift
  voxa access check "$1" "$2" --at "$3" --json >out 2>err
  grep -q "\"Opens\": $([ "$wanted" = yes ] && echo true || echo false)" out || fail "opens $*: not $wanted"
}
swipe() { does sim swipe --station "$1" --reader "$2" --card "$3"; }
# held STATION ADDRESS CARD: the doors that the controller itself opens to the card, "absent" when it has no such card.
held() {
  voxa sim controller show --station "$1" --address "$2" 2>err | awk -v card="$3" \
    '/^Cards$/ { on = 1 } on && $1 == card { print $4; found = 1 } END { if (!found) print "absent" }'
}

month=January # everything is new
mkdir plant
does init
does station add North --speed 9600
does station add Annex
doors=()
for place in "Local 1 Main entrance in:Main entrance out" "Local 2 Warehouse:Loading ramp" \
  "North 1 North door:North stairs" "North 2 Workshop:Paint shop" "Annex 1 Annex door:Archive" "Annex 2 Garage:Laboratory"; do
  read -r station address names <<<"$place"
  does sim controller add --station "$station" --address "$address"
  does reader add "${names%:*}" --station "$station" --address "$address" --position 1
  does reader add "${names#*:}" --station "$station" --address "$address" --position 2
  doors+=("${names%:*}" "${names#*:}")
done
does clock
does daily add Office --first 07:00-12:00 --second 12:30-19:00
does daily add Cleaning --first 05:00-07:00
does weekly add Office --days Office,Office,Office,Office,Office,Never,Never --holidays Never
does weekly add Cleaning --days Cleaning,Cleaning,Cleaning,Cleaning,Cleaning,Never,Never --holidays Never
does holiday add "New Year" --date "01/01/$((year + 1))" --each-year
for group in Staff Production Cleaners Visitors Management; do does group add "$group"; done
does group grant Staff --door "Main entrance in" --door "Main entrance out" --door "North door" --program Office
does group grant Production --door "Main entrance in" --door Workshop --door "Paint shop" --program Office
does group grant Cleaners --door "Main entrance in" --program Cleaning
does group grant Visitors --door "Main entrance in" --program Office
for door in "${doors[@]}"; do set -- "${@}" --door "$door"; done
does group grant Management "${@:2}" --program 0
# The table of the personnel office: semicolons, Western European letters.
{
  printf 'Name;Code;Group\r\n'
  for n in $(seq 1 300); do
    group=Staff
    [ $((n % 3)) = 0 ] && group=Production
    [ $((n % 50)) = 0 ] && group=Management
    printf 'Andr\xe9 Nr. %d;%d;%s\r\n' "$n" $((40000 + n)) "$group"
  done
} >people.csv
does import cards people.csv --dry-run
does card list --json
isRows 0
does import cards people.csv
does download
does plan --json
isRows 0
does card list --sort name --limit 5 --json
isRows 5
says 'André Nr. 1"'
opens yes 1 "Main entrance in" "$monday 09:00"
opens no 1 "Main entrance in" "$monday 12:15"
opens no 1 Workshop "$monday 09:00"

month=February # joiners
does card add "Ada Byron" --code 50001 --group Staff
says "Card 301"
refuses "remark" card add "Ada Byron" --code 50002 --group Production
does card add "Ada Byron" --remark Production --code 50002 --group Production
refuses "U+0141" card add "Łucja Wąs" --code 50003 --group Staff
does card add "Łucja Wąs" --transliterate --code 50003 --group Staff
says "Lucja Was"
refuses "did you mean Staff" card add "Bob Hill" --code 50004 --group Stauff
does download
swipe Local "Main entrance in" 301
does read --all
does journal --person "Ada Byron" --last 1
says "Ada Byron, Main entrance in"

month=March # a card is lost while a controller is dead
does sim controller fault --station North --address 1 --silent
ends 3 card block "Ada Byron"
says "North Controller 1"
[ "$(held Local 1 301)" = absent ] || fail "a lost card is held by a controller that answers"
[ "$(held North 1 301)" = 1 ] || fail "the silent controller has been told"
does card list --pending --json
says '"Name": "Ada Byron"'
opens no 301 "Main entrance in" "$monday 09:00"
does sim controller fault --station North --address 1 --none
does download
[ "$(held North 1 301)" = none ] || fail "the lost card opens once its controller answers"
does card replace "Ada Byron" --code 50101
does download
opens yes 301 "Main entrance in" "$monday 09:00"
refuses "50001" card find 50001

month=April # visitors
does card lend "Visitor 1" --code 60001 --group Visitors --until "$soon" --for "Fair"
refuses "over already" card lend "Visitor 2" --code 60002 --group Visitors --until 31/12/2019
does card list --expires-before "$(date -d '+30 days' +%d/%m/%Y)" --json
isRows 1
does card list --door "Main entrance in" --group Visitors --json
isRows 1
does card block "Visitor 1"
does card unblock "Visitor 1"
does download

month=May # changed hours
refuses "Staff" weekly delete Office
does daily set Office --first 06:00-12:00
does daily rename Office "Office hours"
does weekly show Office
says "06:00-12:00"
does holiday set "New Year" --date "02/01/$((year + 1))"
does holiday rename "New Year" "Day after New Year"
ends 0 download
opens yes 1 "Main entrance in" "$monday 06:30"

month=June # a new wing
does station add Wing --speed 4800
does sim controller add --station Wing --address 3
does reader add "Wing door" --station Wing --address 3 --position 1
does reader add "Wing stairs" --station Wing --address 3 --position 2
does clock
does group copy Staff "Staff of the wing"
does group grant "Staff of the wing" --door "Wing door" --door "Wing stairs" --program Office
does card set --where "name=Nr. 1" --where group=Staff --group "Staff of the wing" --dry-run
does card list --group "Staff of the wing" --json
isRows 0
refuses "--yes" card set --where "name=Nr. 1" --where group=Staff --group "Staff of the wing"
does --yes card set --where "name=Nr. 1" --where group=Staff --group "Staff of the wing"
does download
does plan --json
isRows 0
opens yes 1 "Wing door" "$monday 09:00"
opens no 2 "Wing door" "$monday 09:00"
does reader rename "Wing stairs" "Wing emergency stairs"
does reader set "Wing door" --open-delay 6
says "no lines"

month=July # the personnel office sends its table again
sed 's/Nr\. 7;40007;Staff/Nr. 7;40007;Production/; s/Nr\. 8;/Nr. Eight;/' people.csv >again.csv
does import cards again.csv --update --dry-run
says "Nr. Eight"
does --yes import cards again.csv --update
does card show "André Nr. 7" --json
says '"Group": "Production"'
does download
does export cards all.csv
does --yes import cards all.csv --update
does plan --json
isRows 0

month=August # leavers
does card delete "André Nr. 9"
does card delete "André Nr. 10"
does card list --deleted --json
isRows 2
does card restore "André Nr. 10"
refuses "--yes" card purge "André Nr. 9"
does --yes card purge "André Nr. 9"
does card add "André Nr. 9" --number 9 --code 40009 --group Visitors
does download
opens no 9 "North door" "$monday 09:00"
opens yes 10 "Main entrance in" "$monday 09:00"

month=September # somebody marries; the journal knows her by both names
does card rename "Ada Byron" "Ada King"
swipe Local "Main entrance in" 301
swipe Local "Main entrance in" 302
does sim swipe --station North --reader "North door" --code 77777
does read --all
does journal --person "Ada King" --json
isRows 2
does journal --person "Ada Byron" --json
isRows 2
does journal --unknown --since today --json
isRows 1
does journal --door "North door" --since -1d --json
isRows 1
does journal --table --outcome unknown
says 77777

month=October # a controller burns out
does sim controller replace --station Annex --address 2
does controller replaced --station Annex --address 2
does plan --json
says '"Annex Controller 2'
does download
opens yes 50 Laboratory "$monday 09:00"
[ "$(held Annex 2 50)" != absent ] || fail "the new controller lacks a card"
does plan --json
isRows 0

month=November # a line is given up
refuses "Garage" station delete Annex
refuses "has its position" station delete Annex --move-to North
refuses "Management" reader delete Archive
does reader delete Archive --revoke
refuses "Management" reader delete Garage
does reader delete Garage --move-to Laboratory
does group delete Cleaners
does alarm add "Annex smoke" --type A --station Annex --address 1 --number 4
says "no lines"

month=December # an audit
does access who "Main entrance in" --json
[ "$(rows)" -gt 250 ] || fail "few may pass the main entrance"
does access what "Ada King"
does card list --never-used --json
[ "$(rows)" -gt 290 ] || fail "few cards were never used"
does journal save audit.mdb
refuses "--force" journal save audit.mdb
before=$(voxa journal --json | grep -c '^  {')
refuses "--yes" journal delete --before "$soon"
does --yes journal delete --before "$soon"
does journal --json
isRows 0
does journal verify
does --yes journal restore audit.mdb
does journal --json
isRows "$before"
does --yes journal restore audit.mdb
does journal --json
isRows "$before"
does journal verify
does journal index
does journal --since today --person 301 --json
isRows 2

[ "$failures" = 0 ] || {
  echo "$failures failures"
  exit 1
}
echo "A year has passed"
