#!/usr/bin/env bash
# Drives VOXA.dll from real clients under Wine: the scripts beside this file by the script host, the early-bound
# client, the records of tests/conformance by a late-bound one and by the engine over data objects, and, through
# VOXAserver.exe, the 64-bit client and the 64-bit script host. Needs root, the Windows build in build/windows-x86 and the Wine of scripts/wine.sh.
# Usage: run.sh [NAME...]; all of them without a name.
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/wine.sh
wine_prepare
trap wine_stop EXIT
build=build/windows-x86
work=$PWD/build/automation
failures=0

# A folder with the binaries and nothing else.
new_folder() {
  rm -rf "${work:?}/$1"
  mkdir -p "$work/$1"
  cp "$build"/{VOXA.dll,TLXP32.dll,voxa.exe,VOXAserver.exe,client.exe,client64.exe} "$work/$1"
}

# A client has passed when its last line says so: the script host ends with 0 after an error, too.
passes() {
  local name=$1
  shift
  "$start" "$work/$name" "$@" >"$work/$name/out.txt" 2>"$work/$name/err.txt" || true
  if [ "$(tail -n 1 "$work/$name/out.txt" | tr -d '\r')" = passed ]; then
    echo "Automation: $name passed"
  else
    echo "Automation: $name FAILED"
    cat "$work/$name/out.txt" "$work/$name/err.txt"
    failures=$((failures + 1))
  fi
}

# A script tells behind "' Shown: " what the person has to see.
shows() {
  local text
  sed -n "s/^' Shown: //p" "$work/$1"/*.vbs >"$work/$1/shown.txt"
  while IFS= read -r text; do
    grep -qF "$text" "$work/$1/err.txt" && continue
    echo "Automation: $1 FAILED: it does not show '$text'"
    failures=$((failures + 1))
  done <"$work/$1/shown.txt"
}

# Runs a script of the documentation, which has worked when it prints what the documentation says.
prints() {
  local script=$work/$name/$1
  scripts/automation-reference block "$1.vbs" >"$script.vbs"
  echo 'WScript.Echo "passed"' >>"$script.vbs"
  passes "$name" cscript //nologo "$1.vbs"
  { scripts/automation-reference block "$1.txt" && echo passed; } >"$script.txt"
  tr -d '\r' <"$work/$name/out.txt" | diff "$script.txt" - || failures=$((failures + 1))
}

# Names that end with 64 are run on 64-bit Windows, where the 32-bit regsvr32 registers.
run() {
  local name=$1 start=wine_run register=regsvr32
  case $name in *64) start=wine_run64 register='C:\windows\syswow64\regsvr32.exe' ;; esac
  new_folder "$name"
  "$start" "$work/$name" "$register" /s VOXA.dll
  case $name in
    client | client64) passes "$name" "$name.exe" ;;
    conformance)
      cp "$build/conformance.exe" tests/conformance/*.test "$work/conformance"
      passes conformance conformance.exe
      ;;
    dao)
      # The engine over data objects, over those of VOXA.dll.
      cp "$build/dao_conformance.exe" tests/conformance/*.test src/engines/dao/calls.txt "$work/dao"
      passes dao dao_conformance.exe
      ;;
    manifest)
      # Without registration, which is taken back twice: the second time there is none, and that is no failure.
      wine_run "$work/manifest" regsvr32 /u /s VOXA.dll
      wine_run "$work/manifest" regsvr32 /u /s VOXA.dll
      scripts/automation-reference manifest >"$work/manifest/KORVA.manifest"
      {
        echo '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">'
        echo '<assemblyIdentity type="win32" name="client" version="1.0.0.0" processorArchitecture="x86"/>'
        sed -n '/^<dependency>/,/<.dependency>$/p' docs/automation.md
        echo '</assembly>'
      } >"$work/manifest/client.exe.manifest"
      passes manifest client.exe
      ;;
    example64) prints example ;;
    example)
      # One behind the other in the same folder.
      prints example
      prints changes
      prints recipes
      ;;
    *)
      # Those that begin with dao have their files served by the engine over data objects.
      case $name in dao-*) export VOXA_ENGINE=installed:KORVA.DBEngine ;; esac
      cat tests/automation/{check,installation,"${name#dao-}"}.vbs >"$work/$name/$name.vbs"
      passes "$name" cscript //nologo "$name.vbs"
      unset VOXA_ENGINE
      shows "$name"
      ;;
  esac
}

names=("$@")
[ ${#names[@]} -gt 0 ] || names=(story values objects client client64 conformance dao dao-story example example64 manifest)
for name in "${names[@]}"; do run "$name"; done
wine_run "$work/$name" regsvr32 /u /s VOXA.dll
exit "$((failures > 0))"
