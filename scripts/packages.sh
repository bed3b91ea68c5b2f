# Sourced by the other scripts: installs the Debian packages that a step needs, builds, and finds a place for the
# files of the tests.

# Installs those of the named packages that are missing. Needs root (or sudo) only when one is missing.
ensure_packages() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "Missing packages: ${missing[*]}. Install them as root: apt-get install ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  echo "Installing packages: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}

build_packages=(cmake ninja-build g++ libc6-dev libsqlite3-dev libcli11-dev nlohmann-json3-dev
  libkainjow-mustache-dev libicu-dev pkg-config mdbtools-dev)
test_packages=("${build_packages[@]}" mdbtools libgtest-dev clang-14 libclang-rt-14-dev clang-format-14)
tidy_packages=("${test_packages[@]}" clang-tidy-14 libbenchmark-dev)
windows_packages=(cmake ninja-build g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix mingw-w64-tools libwine-dev libwine
  libcli11-dev nlohmann-json3-dev libkainjow-mustache-dev)
automation_packages=(mmdebstrap)
report_packages=(chromium chromium-driver python3-selenium poppler-utils fonts-liberation npm)
bench_packages=("${build_packages[@]}" libbenchmark-dev mdbtools sqlite3)

# Nobody needs what the tests write when they have ended. In memory no disk is waited for. That needs a gigabyte of
# memory, in a place from which programs may be run.
use_memory() {
  local probe free
  probe=$(mktemp -p /dev/shm 2>/dev/null) || return 0
  free=$(df --output=avail -k /dev/shm | tail -n 1)
  if cp /bin/true "$probe" && chmod 700 "$probe" && "$probe" && [ "$free" -gt 1000000 ]; then
    export TMPDIR=/dev/shm
  fi 2>/dev/null
  rm -f "$probe"
}

# Configures and builds a preset; quiet unless it fails.
build_preset() {
  local preset=$1 log
  shift
  log=$(mktemp)
  echo "Building ($preset)"
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" "$@"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
