#!/bin/bash
# What bash completes after a tab.
# Usage: completion.sh PROGRAM
set -u
program=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
voxa() { "$program" "$@"; }
voxa --dir plant init --demo-data >/dev/null || exit 1
# shellcheck disable=SC1090
source <(voxa completion bash)
failures=0
completes() { # EXPECTED WORD...: answers with commas between. The last word is the one begun.
  local expected=$1
  shift
  COMP_WORDS=(voxa "$@")
  COMP_CWORD=$#
  _voxa
  local IFS=,
  [ "${COMPREPLY[*]}" = "$expected" ] && return
  echo "FAILED: '$*' gives '${COMPREPLY[*]}', not '$expected'"
  failures=$((failures + 1))
}
completes 'Main\ entrance,Main\ entrance\ out' --dir plant access who mai
completes 'Main entrance,Main entrance out' --dir plant access who '"Main e'
completes 'Office\ staff' --dir plant card list --group Off
completes "Ben\\ O\\'Hara" --dir = plant card set ben
completes 'Management' --dir plant card set 1 --group = '"Ma'
completes 'Cleaning' --dir plant group grant Management --program Cl
completes 'Office,Office' --dir plant weekly add X --days Office,Of
completes '' --dir plant group set 1 --name Ma
voxa --dir plant card delete "Ann Lee" &>/dev/null
voxa --dir plant card block "Ada Byron" &>/dev/null
completes 'Ann\ Lee' --dir plant card restore ''
completes 'Ada\ Byron' --dir plant card unblock Ad
completes 'backup,badge' help ba
completes 'save' help journal sa
completes 'granted' journal --type g
completes 'card' ca
completes 'grant' group gr
completes '--station' plan --sta
completes 'QSX3' sim controller add --type Q
completes '' --dir plant reader add Mai
completes '' --dir nowhere access who M
[ "$(ls)" = plant ] || echo "FAILED: a completion leaves files" "$((failures += 1))"
[ "$failures" = 0 ] && echo "Completed"
exit "$((failures > 0))"
