#!/usr/bin/env bash
# tools/window-sheet.sh BUILD [FOLDER]: photographs the main window in its modes, the sheets, the questions and the
# stop bar on a private virtual display: in English at one pixel a point (windows.png), and in German at two
# (windows@2x.png). BUILD is a build folder with the program window_sheet; FOLDER is docs/pictures when it is not given.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
program=$(realpath "${1:?a build folder}")/tests/app/window/window_sheet
folder=$(realpath -m "${2:-$root/docs/pictures}")
work=$(mktemp -d)
trap 'kill "${children[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT
children=()
Xvfb -displayfd 3 -screen 0 2600x1800x24 -nolisten tcp -noreset 3>"$work/display" 2>/dev/null &
children+=($!)
for (( i = 0; i < 100; ++i )); do [[ -s $work/display ]] && break; sleep 0.1; done
DISPLAY=:$(<"$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
openbox >/dev/null 2>&1 &
children+=($!)
mkdir -p "$folder"
LC_ALL=C.UTF-8 "$program" "$folder/windows.png" 2>/dev/null
QT_SCALE_FACTOR=2 LC_ALL=de_DE.UTF-8 LANGUAGE=de "$program" "$folder/windows@2x.png" 2>/dev/null
printf '%s\n' "$folder/windows.png" "$folder/windows@2x.png"
