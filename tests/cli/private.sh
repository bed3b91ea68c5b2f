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
succeeds export sql "$folder/all.sql"
succeeds export csv "$folder/tables"
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
succeeds export csv "$folder/masked"
! grep -rq 2468 "$folder/masked" || fail "a personal code is shown by: export csv"
succeeds export csv "$folder/shown" --show-pins
grep -rq 2468 "$folder/shown" || fail "no personal code is shown by: export csv --show-pins"
hides card list
hides card find Ann --json
hides export cards
hides log
hides log --json
for place in "Local 1" "Annex 5"; do
  hides sim controller show --station "${place% *}" --address "${place#* }"
done

# A statement has them only masked, by a star. The ledger holds what was sent.
hides db query "select * from Cardholders" --json
hides db query Things --file plant/Ledger.MDB
masks() { # ARGUMENT...: nothing else may be done with them.
  ! voxa db query "$@" >out 2>err && grep -q -- --show-pins err && ! grep -q 2468 out err || fail "not refused: $*"
}
for option in "" "--file $folder/saved.mdb" "--file plant/KRV.mdb"; do
  for statement in "select pincode as x from Cardholders" "select PINCode + 0 from Cardholders" \
    "select Name from Cardholders where [PINCode] = 2468" "select distinct * from Cardholders" \
    "select * from Readers order by 15, PINCode" "select (select max(c.PINCode) from Cardholders c) from Readers"; do
    # shellcheck disable=SC2086
    masks "$statement" $option
  done
done
masks "update Cardholders set Name = PINCode" --write
masks "insert into Cardholders select * from Cardholders" --write
masks "update Readers set PINCode = 1 where Id = 1" --write
masks "select Digest from Digests" --file plant/Ledger.MDB
masks "select Id from Things where State like '*2468*'" --file plant/Ledger.MDB
succeeds db query "select Name from Cardholders where PINCode = 2468 and PINCodeFlagD = false" --show-pins
grep -q Ann out || fail "a personal code cannot be used by who may see it"

# Texts of somebody else's database do not reach the driver as lines, or the terminal as commands.
! voxa station set Annex --modem //server/modem.ini >out 2>err || fail "a modem file on the network"
! voxa station set Annex --phone $'1\nCFL:/etc/passwd' >out 2>err || fail "a line of the driver's in a text"
succeeds station list
! grep -q modem.ini out || fail "a refused text stayed"
[ "$failures" -eq 0 ] && echo "Private"
exit "$((failures > 0))"
