#!/usr/bin/env bash
# Looks at the report in a headless browser. Pictures, pages on paper and what a screen reader is told are left in the
# new folder that is named; without one in build/report.
# Usage: tests/report/run.sh VOXA [FOLDER]
set -euo pipefail
voxa=$(realpath "$1")
cd "$(dirname "$0")/../.."
. scripts/packages.sh
ensure_packages "${report_packages[@]}"
[ $# -gt 1 ] || rm -rf build/report
mkdir -p build
folder=$(realpath -m "${2:-build/report}")
mkdir -m 700 "$folder"
export PYTHONDONTWRITEBYTECODE=1

# The rules of accessible pages; they come in a package of the npm registry.
package=axe-core@4.14.1
hash=e6b0ce02b84d892e2e33e403485e7f3d6c29e2be6df65daf44d89ba564139745
axe=build/axe-core
if [ "$(cat "$axe/hash" 2>/dev/null)" != "$hash" ]; then
  download=$(mktemp -d)
  trap 'rm -rf "$download"' EXIT
  npm pack --silent --pack-destination "$download" "$package" >/dev/null
  echo "$hash  $(echo "$download"/*.tgz)" | sha256sum --check --quiet
  mkdir -p "$axe"
  tar -xzf "$download"/*.tgz -C "$axe" --strip-components=1 package/axe.min.js
  echo "$hash" >"$axe/hash"
fi

"$voxa" demo "$folder/demo" >/dev/null
python3 tests/report/browser.py "$voxa" "$axe/axe.min.js" "$folder" "$folder/demo" 2026-12-21 2026-12-27 2026-12-28
