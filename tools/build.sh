#!/usr/bin/env bash
# tools/build.sh TARGET...: installs what is missing and builds in release mode into build/release.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-packages.sh packages.txt
options=()
# The compiler that the project is developed with must find nothing to say; another one may.
[[ $(c++ -dumpversion) == 12* ]] && options+=(-DCMAKE_COMPILE_WARNING_AS_ERROR=ON)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset release "${options[@]}" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
cmake --build --preset release --target "$@" >&2
