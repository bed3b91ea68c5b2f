# Sourced: a 32-bit Wine in a root of its own below build/wine, since the host's packages may not have one.
# Needs root. Nothing of it is configured, so that it can be made on any machine; on one whose kernel runs no
# 32-bit programs, an emulator for them comes along.

wine_root=$PWD/build/wine/root

# Address of the machine's own mirror of the distribution, so that no other is named here.
_wine_mirror() {
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1
}

# Whether the kernel runs the root's programs.
_wine_runs() {
  chroot "$wine_root" /bin/true 2>/dev/null
}

# The emulator for 32-bit programs: of the backports, since the distribution's own cannot run Wine (it places
# a mapping elsewhere when its address is taken, where Wine expects a failure).
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
  # Programs of this processor type, by the head of their files. F: the emulator is opened now, so that it
  # serves in the root, too.
  printf '%s' ':voxa-i386:M::\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00:' \
    '\xff\xff\xff\xff\xff\xfe\xfe\xfc\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff:' \
    "$PWD/$folder/qemu-i386:OCF" >/proc/sys/fs/binfmt_misc/register
}

# Makes the root when there is none, and a Windows drive in it.
wine_prepare() {
  if [ ! -e "$wine_root/ready" ]; then
    echo "Making a root with 32-bit Wine"
    rm -rf "$wine_root"
    mkdir -p "$(dirname "$wine_root")"
    mmdebstrap --quiet --variant=extract --architectures=i386 \
      --hook-dir=/usr/share/mmdebstrap/hooks/merged-usr --include=wine,wine32,dash,coreutils,libc-bin \
      bookworm "$wine_root" "$(_wine_mirror)" >/dev/null
    # What the package's installation would do: mark a library as one of Wine's own.
    local from=$wine_root/usr/i686-w64-mingw32/lib/zlib1.dll
    {
      head -c 64 "$from"
      printf 'Wine builtin DLL\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0'
      tail -c +97 "$from"
    } >"$wine_root/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"
    mkdir -p "$wine_root"/{proc,dev,tmp,root,build}
    touch "$wine_root/ready"
  fi
  _wine_runs || _wine_emulator
  _wine_runs || {
    echo "This machine cannot run 32-bit programs, not even emulated" >&2
    return 1
  }
  if [ ! -e "$wine_root/root/.wine/system.reg" ]; then
    wine_run "$PWD/build" wineboot --init 2>/dev/null
    wine_stop
  fi
}

# Ends what of Wine still runs in the root, its services among it.
wine_stop() {
  chroot "$wine_root" env -i HOME=/root /usr/lib/wine/wineserver32 -k || true
}

# Runs a Windows program in the root: wine_run FOLDER PROGRAM ARGUMENT... FOLDER, below build, is the current
# folder of the program. All of build is Z:\build: Wine's server lives on and knows the first run's places only.
wine_run() {
  local folder=${1#"$PWD/build"}
  shift
  unshare --mount --propagation private sh -euc '
    root=$1; build=$2; folder=$3; shift 3
    mount --bind /dev "$root/dev"
    mount -t proc proc "$root/proc"
    mount --bind "$build" "$root/build"
    exec chroot "$root" env -i HOME=/root WINEARCH=win32 WINEDEBUG=-all VOXA_PROMPTS=console LC_ALL=C.UTF-8 \
      sh -c "cd \"/build/\$1\" && shift && exec /usr/lib/wine/wine \"\$@\"" sh "$folder" "$@"
  ' sh "$wine_root" "$PWD/build" "$folder" "$@"
}
