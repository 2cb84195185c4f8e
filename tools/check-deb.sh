#!/usr/bin/env bash
# tools/check-deb.sh [VORNIC.deb]: builds the Debian package where none is given, and installs it in a fresh root of
# the stable system that it is made for: there it must start, record, be known to the desktop, and leave nothing
# when it is purged. Needs root, debootstrap, ffmpeg (ffprobe), desktop-file-utils, and the network.
#
# The fresh system and the packages that were fetched are kept in the user's cache folder for the next time.
# SUITE and MIRROR choose another system.
set -euo pipefail
suite=${SUITE:-bookworm}
mirror=${MIRROR:-http://deb.debian.org/debian}
cache=${XDG_CACHE_HOME:-$HOME/.cache}/vornic-check-deb/$suite
helpers=(xvfb x11-utils dbus-daemon dbus-bin libglib2.0-bin procps)

fail() { printf 'check-deb: %s\n' "$*" >&2; exit 1; }
say() { printf 'check-deb: %s\n' "$*" >&2; }

# ---- outside: the package, a folder, and a namespace whose mounts and processes end with it

build_package()
{
  tools/build.sh vornic help_document manual >&2 || fail 'the build'
  rm -rf build/package
  (cd build/release && cpack -G DEB -B "$OLDPWD/build/package" >&2) || fail cpack
  printf '%s\n' build/package/*.deb
}

outside()
{
  local package
  (( EUID == 0 )) || fail 'must be root, for chroot'
  for program in debootstrap ffprobe desktop-file-validate unshare; do
    command -v "$program" >/dev/null || fail "needs $program"
  done
  package=${1:-}
  [[ $package ]] || { cd "$(dirname "$0")/.."; package=$(build_package) || exit 1; }
  [[ -f $package ]] || fail "there is no package \"$package\""
  package=$(realpath "$package")
  work=$(mktemp -d)
  trap clean_up EXIT
  mkdir -p "$cache"
  unshare --mount --pid --fork --kill-child -- bash "$script" --inside "$work/root" "$package"
}

clean_up()
{
  # The mounts were the namespace's own; to delete what is mounted would be worse than to leave the folder.
  if grep -qF " $work/" /proc/self/mounts; then
    say "something is still mounted in $work, which stays"
  else
    rm -rf --one-file-system "$work"
  fi
}

# ---- inside the namespace

in_root() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
as_user()
{
  chroot --userspec=tester "$root" env -i PATH=/usr/bin:/bin LANG=C.UTF-8 HOME=/home/tester \
    XDG_RUNTIME_DIR=/home/tester/run "$@"
}
apt() { in_root apt-get -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 "$@" >"$root.log" 2>&1 || { cat "$root.log" >&2; fail "apt-get $*"; }; }

mount_root()
{
  mkdir -p "$root/dev/shm"
  mount -t proc proc "$root/proc"
  mount -t tmpfs tmpfs "$root/dev/shm"
  mount -t tmpfs -o mode=1777 tmpfs "$root/tmp"
}

make_root()
{
  if [[ -f $cache/root.tar ]]; then
    say 'unpacking the fresh system'
    mkdir "$root"
    tar -xpf "$cache/root.tar" -C "$root" --numeric-owner
    mount_root
  else
    say 'making a fresh system'
    debootstrap --variant=minbase "$suite" "$root" "$mirror" >"$root.log" 2>&1 \
      || { tail -n 20 "$root.log" >&2; fail debootstrap; }
    umount "$root/proc" 2>/dev/null || true
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
    chmod +x "$root/usr/sbin/policy-rc.d"
    in_root useradd --create-home tester
    mount_root
    apt update
    apt install "${helpers[@]}"
    in_root apt-get clean
    rm -rf "$root"/var/lib/apt/lists/*
    tar -cf "$cache/root.tar.new" -C "$root" --numeric-owner --one-file-system .
    mv "$cache/root.tar.new" "$cache/root.tar"
  fi
  apt update
  apt dist-upgrade
  as_user mkdir -p -m 700 /home/tester/run
}

# Every path but what the package tools, the log and the kernel keep for themselves.
list_files()
{
  (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./dev -o -path ./tmp -o -path ./run -o -path ./home \
    -o -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/cache/apt -o -path ./var/log \) -prune -o -print) \
    | sed 's/^\.//' | sort
}

# What it depends on comes first: so the list of files before it is complete.
install_package()
{
  say 'installing what it depends on'
  [[ -d $cache/debs ]] && cp -n "$cache"/debs/*.deb "$root/var/cache/apt/archives/" 2>/dev/null
  apt -o APT::Keep-Downloaded-Packages=true satisfy "$(dpkg-deb -f "$1" Depends)"
  mkdir -p "$cache/debs"
  cp -n "$root"/var/cache/apt/archives/*.deb "$cache/debs/" 2>/dev/null || true
  list_files >"$root.before"

  say "installing $(basename "$1")"
  cp "$1" "$root/tmp/vornic.deb"
  apt install /tmp/vornic.deb
  list_files >"$root.installed"
}

start_display()
{
  mkdir -p -m 1777 "$root/tmp/.X11-unix"
  as_user Xvfb -displayfd 5 -screen 0 1280x720x24 -nolisten tcp -noreset 5>"$root/tmp/display" >/dev/null 2>&1 &
  for (( i = 0; i < 100; ++i )); do
    [[ -s $root/tmp/display ]] && break
    sleep 0.1
  done
  display=:$(<"$root/tmp/display")
  [[ $display != : ]] || fail 'the virtual display does not start'
}

check_version()
{
  local said expected
  expected=$(in_root dpkg-query -W -f='${Version}' vornic)
  said=$(as_user vornic --version)
  [[ $said == "vornic $expected" ]] || fail "vornic --version says \"$said\", the package is $expected"
  say "$said"
}

check_recording()
{
  local movie facts
  movie=$(as_user DISPLAY="$display" vornic record --duration 2 --ignore-low-space /home/tester/movie.mp4 \
    2>"$root.log" | tail -n 1) || { cat "$root.log" >&2; fail 'vornic record'; }
  [[ $movie == /home/tester/movie.mp4 ]] || fail "vornic record names the movie \"$movie\""
  facts=$(ffprobe -v error -select_streams v -show_entries stream=codec_name,width,height:format=duration \
    -of default=noprint_wrappers=1 "$root$movie")
  for fact in codec_name=h264 width=1280 height=720; do
    grep -qx "$fact" <<<"$facts" || fail "the movie is not of $fact: $facts"
  done
  awk -F= '$1 == "duration" { good = $2 > 1.8 && $2 < 2.6 } END { exit !good }' <<<"$facts" \
    || fail "the movie is not two seconds long: $facts"
  say "recorded: ${facts//$'\n'/ }"
}

check_desktop()
{
  local share=$root/usr/share id=com.kavlor.vornic
  desktop-file-validate "$share/applications/$id.desktop"
  for file in "metainfo/$id.metainfo.xml" "icons/hicolor/scalable/apps/$id.svg" \
    "icons/hicolor/symbolic/apps/$id-symbolic.svg" "icons/hicolor/48x48/apps/$id.png" man/man1/vornic.1.gz \
    bash-completion/completions/vornic zsh/vendor-completions/_vornic fish/vendor_completions.d/vornic.fish \
    vornic/Help.pdf doc/vornic/copyright; do
    [[ -s $share/$file ]] || fail "/usr/share/$file is missing"
  done
  say 'desktop file, icons, manual, help and completions are in place'
}

check_hardening()
{
  python3 -B "$(dirname "$script")/../tests/packaging/tst_hardening.py" --program "$root/usr/bin/vornic" \
    >"$root.log" 2>&1 || { cat "$root.log" >&2; fail 'the program lacks a protection'; }
  say 'the program has its protections'
}

# The desktop starts the program through its bus, and the window comes.
check_activation()
{
  as_user DISPLAY="$display" dbus-run-session -- sh -c '
    gdbus call --session --dest com.kavlor.vornic --object-path /com/kavlor/vornic \
      --method org.freedesktop.Application.Activate "{}" || exit 1
    for try in $(seq 100); do
      xwininfo -root -tree | grep -q "\"Vornic\"" && break
      sleep 0.1
    done
    xwininfo -root -tree | grep -q "\"Vornic\"" || exit 1
    pkill -TERM -x -u "$(id -u)" vornic
    for try in $(seq 100); do
      pgrep -x -u "$(id -u)" vornic >/dev/null || exit 0
      sleep 0.1
    done
    exit 1' >"$root.log" 2>&1 || { cat "$root.log" >&2; fail 'the bus does not start the program, or it does not end'; }
  say 'the bus starts it, and it ends when it is told to'
}

check_purge()
{
  local changes
  apt purge vornic
  changes=$(diff "$root.before" <(list_files)) || fail $'purging leaves or takes too much:\n'"$changes"
  [[ -z $(compgen -G "$root/var/lib/dpkg/info/vornic.*") ]] || fail 'the package tools still know it'
  say "purged: all $(comm -13 "$root.before" "$root.installed" | wc -l) files and folders are gone"
}

inside()
{
  root=$1
  make_root
  install_package "$2"
  check_desktop
  check_version
  check_hardening
  start_display
  check_recording
  check_activation
  check_purge
  say good
}

script=$(realpath "$0")
if [[ ${1-} == --inside ]]; then
  inside "$2" "$3"
else
  outside "$@"
fi
