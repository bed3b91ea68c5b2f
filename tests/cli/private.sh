#!/bin/bash
# What the command leaves is its user's alone, and personal codes show only when asked for.
# Usage: private.sh PROGRAM
set -u
unset TLXP_SITE
program=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
chmod 755 .  # what is in it has to be private by itself
umask 000
failures=0

voxa() { "$program" --dir plant "$@" </dev/null; }
fail() {
  echo "FAILED: $1"
  sed 's/^/    /' out err 2>/dev/null
  failures=$((failures + 1))
}
succeeds() { voxa "$@" >out 2>err || fail "exit status of: $*"; }
# One card on both kinds of controller: its personal code goes out in a line with separators and in one without.
succeeds init
succeeds station add Annex
succeeds reader add Front --station Local --address 1 --position 1
succeeds reader add Back --station Annex --address 5 --position 1 --type VRMD1
succeeds sim controller add --station Local --address 1
succeeds sim controller add --station Annex --address 5 --type VRMD1
succeeds group add Staff
succeeds group grant Staff Front --program Always
succeeds group grant Staff Back --program Always
succeeds card add Ann --number 12 --code 4711 --group Staff --pin 2468
succeeds download all
succeeds sim swipe --station Local --reader Front --code 815
succeeds read --reader Front
succeeds read
succeeds export cards "$folder/cards.csv"
succeeds db save "$folder/saved.mdb"
succeeds --yes db restore "$folder/saved.mdb"
rm out err

shared=$(find . -mindepth 1 -perm /077)
[ -z "$shared" ] || fail "these can be read or written by others: $shared"
for name in KRV.mdb Journal.MDB I18N.MDB COMMAND.TXT COM.LOG S001.ini RS001.OUT J00101.DAT Log.txt Backup site; do
  [ -e "plant/$name" ] || fail "$name is missing, which this test is about"
done

hides() {
  succeeds "$@"
  ! grep -q 2468 out || fail "a personal code is shown by: $*"
  succeeds "$@" --show-pins
  grep -q 2468 out || fail "no personal code is shown by: $* --show-pins"
}
hides card list
hides card find Ann --json
hides export cards
hides log
hides log --json
for place in "Local 1" "Annex 5"; do
  hides sim controller show --station "${place% *}" --address "${place#* }"
done

# Texts of somebody else's database do not reach the driver as lines, or the terminal as commands.
! voxa station set Annex --modem //server/modem.ini >out 2>err || fail "a modem file on the network"
! voxa station set Annex --phone $'1\nCFL:/etc/passwd' >out 2>err || fail "a line of the driver's in a text"
succeeds station list
! grep -q modem.ini out || fail "a refused text stayed"
[ "$failures" -eq 0 ] && echo "Private"
exit "$((failures > 0))"
