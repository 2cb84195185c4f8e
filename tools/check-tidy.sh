#!/usr/bin/env bash
# tools/check-tidy.sh [FILE...]: fails where clang-tidy finds something that .clang-tidy asks for: in all of src/, or in
# those of the files that are sources under src/. Builds what is missing first: generated headers.
#
# CLANG_TIDY and CLANG name other programs than the first of those that are installed.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/release
units=build/tidy

first_of()
{
  local name
  for name in "$@"; do
    command -v "$name" && return
  done
  printf 'check-tidy: needs one of: %s\n' "$*" >&2
  exit 1
}

tidy=${CLANG_TIDY:-$(first_of clang-tidy-14 clang-tidy)}
CLANG=${CLANG:-$(first_of clang++-14 clang++)}
export CLANG
folder=$build
files=()
for file in "$@"; do
  [[ $file == src/*.cpp ]] && files+=("$file")
done
(( $# == 0 || ${#files[@]} )) || exit 0

tools/build.sh vornic
if (( $# == 0 )); then
  folder=$units
  list=$(tools/tidy-units.py "$build" "$units")
  mapfile -t files <<<"$list"
fi
printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 1 "$tidy" --quiet -p "$folder" 2> >(grep -v 'warnings\? \(generated\|treated\)' >&2)
