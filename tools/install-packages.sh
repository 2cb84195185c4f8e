#!/usr/bin/env bash
# tools/install-packages.sh LIST: installs what packaging/LIST lists and this machine lacks. Says nothing when
# all is there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
mapfile -t wanted < <(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$root/packaging/$1")

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  printf 'No apt here: please see to these packages yourself: %s\n' "${wanted[*]}" >&2
  exit 0
fi
missing=()
for package in "${wanted[@]}"; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $state == installed ]] || missing+=("$package")
done
(( ${#missing[@]} )) || exit 0

as_root=()
(( EUID == 0 )) || as_root=(sudo)
printf 'Installing: %s\n' "${missing[*]}" >&2
"${as_root[@]}" apt-get update -q >&2
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
