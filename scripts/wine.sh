# Sourced: makes a Wine in a root of its own below build/wine, since the host's packages may have none: a 32-bit
# Windows, and a 64-bit one beside it. Needs root. No package in it is configured, so that it can be made on any
# machine. Where the kernel runs no 32-bit programs, an emulator for them is added.

wine_root=$PWD/build/wine/root

# The address of the mirror that the machine itself uses; so no mirror is named here.
_wine_mirror() {
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1
}

# Whether the kernel runs the root's 32-bit programs.
_wine_runs() {
  chroot "$wine_root" /lib/ld-linux.so.2 --version >/dev/null 2>&1
}

# The emulator for 32-bit programs. It comes from the backports, since the distribution's own cannot run Wine: when
# the address of a mapping is taken, it puts the mapping elsewhere, where Wine expects a failure.
_wine_emulator() {
  local folder=build/wine/emulator options
  if [ ! -x "$folder/qemu-i386" ]; then
    mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial"
    echo "deb $(_wine_mirror) bookworm-backports main" >"$folder/sources.list"
    options=(-o "Dir::Etc::sourcelist=$PWD/$folder/sources.list" -o Dir::Etc::sourceparts=/dev/null
      -o "Dir::State::lists=$PWD/$folder/lists" -o "Dir::Cache=$PWD/$folder/cache" -o APT::Sandbox::User=root)
    apt-get "${options[@]}" update -qq
    (cd "$folder" && apt-get "${options[@]}" download -qq qemu-user/bookworm-backports)
    dpkg-deb -x "$folder"/qemu-user_*.deb "$folder/files"
    mv "$folder/files/usr/bin/qemu-i386" "$folder/qemu-i386"
    rm -rf "$folder/files" "$folder"/*.deb "$folder/cache" "$folder/lists"
  fi
  [ -e /proc/sys/fs/binfmt_misc/register ] || mount -t binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc
  [ ! -e /proc/sys/fs/binfmt_misc/voxa-i386 ] || echo -1 >/proc/sys/fs/binfmt_misc/voxa-i386
  # The head of a file tells that it is a program for this type of processor. F: the emulator is opened now, so that
  # it also works inside the root.
  printf '%s' ':voxa-i386:M::\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00:' \
    '\xff\xff\xff\xff\xff\xfe\xfe\xfc\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff:' \
    "$PWD/$folder/qemu-i386:OCF" >/proc/sys/fs/binfmt_misc/register
}

# The package's installation would do this: it marks a library as one of Wine's own.
_wine_mark_library() {
  local from=$wine_root/usr/$1-w64-mingw32/lib/zlib1.dll
  {
    head -c 64 "$from"
    printf 'Wine builtin DLL\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0'
    tail -c +97 "$from"
  } >"$wine_root/usr/lib/$2/zlib1.dll"
}

# Makes the root and the Windows drives in it, unless they exist.
wine_prepare() {
  if [ ! -e "$wine_root/ready64" ]; then
    echo "Making a root with Wine"
    rm -rf "$wine_root"
    mkdir -p "$(dirname "$wine_root")"
    mmdebstrap --quiet --variant=extract --architectures=amd64,i386 \
      --hook-dir=/usr/share/mmdebstrap/hooks/merged-usr \
      --include=wine,wine64:amd64,wine32:i386,dash,coreutils,libc-bin bookworm "$wine_root" "$(_wine_mirror)" >/dev/null
    _wine_mark_library i686 i386-linux-gnu/wine/i386-windows
    _wine_mark_library x86_64 x86_64-linux-gnu/wine/x86_64-windows
    mkdir -p "$wine_root"/{proc,dev,tmp,root,build}
    touch "$wine_root/ready64"
  fi
  _wine_runs || _wine_emulator
  _wine_runs || {
    echo "This machine cannot run 32-bit programs, not even emulated" >&2
    return 1
  }
  if [ ! -e "$wine_root/root/win32/system.reg" ]; then
    wine_run "$PWD/build" wineboot --init 2>/dev/null
    wine_run64 "$PWD/build" wineboot --init 2>/dev/null
    wine_stop
  fi
}

# Ends what Wine still runs in the root, with its services.
wine_stop() {
  local bits
  for bits in 32 64; do
    chroot "$wine_root" env -i HOME=/root WINEPREFIX=/root/win$bits /usr/lib/wine/wineserver$bits -k || true
  done
}

# Runs a Windows program in the root: wine_run FOLDER PROGRAM ARGUMENT... FOLDER, below build, is the current
# folder of the program. Always all of build is mounted, as Z:\build: Wine's server goes on running, and knows only
# the mounts of the first run.
wine_run() {
  _wine_run 32 /usr/lib/wine/wine "$@"
}

# The same on 64-bit Windows.
wine_run64() {
  _wine_run 64 /usr/lib/wine/wine64 "$@"
}

_wine_run() {
  local bits=$1 loader=$2 folder=${3#"$PWD/build"}
  shift 3
  unshare --mount --propagation private sh -euc '
    root=$1; build=$2; bits=$3; loader=$4; folder=$5; shift 5
    mount --bind /dev "$root/dev"
    mount -t proc proc "$root/proc"
    mount --bind "$build" "$root/build"
    exec chroot "$root" env -i HOME=/root WINEPREFIX=/root/win$bits WINEARCH=win$bits \
      WINESERVER=/usr/lib/wine/wineserver$bits WINEDEBUG=-all VOXA_PROMPTS=console VOXA_ENGINE="${VOXA_ENGINE-}" LC_ALL=C.UTF-8 \
      sh -c "cd \"/build/\$1\" && shift && exec \"\$@\"" sh "$folder" "$loader" "$@"
  ' sh "$wine_root" "$PWD/build" "$bits" "$loader" "$folder" "$@"
}
