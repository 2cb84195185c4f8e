#!/usr/bin/env bash
# tools/demo.sh PROGRAM MOVIE: records five seconds of a private virtual display with something moving on it.
set -euo pipefail
program=$1
movie=$2
work=$(mktemp -d)
children=()
cleanup() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# The server picks a free display number itself and tells it on descriptor 3.
# -noreset: the first program that ends must not take the background with it.
Xvfb -displayfd 3 -screen 0 1280x720x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/server.log" &
children+=($!)
for (( i = 0; i < 100; ++i )); do [[ -s $work/display ]] && break; sleep 0.1; done
[[ -s $work/display ]] || { cat "$work/server.log" >&2; echo 'The virtual display did not start.' >&2; exit 1; }
DISPLAY=:$(<"$work/display")
export DISPLAY

xsetroot -solid '#27405e'
openbox 2>/dev/null &
children+=($!)
terminal=(xterm -fa 'DejaVu Sans Mono')
"${terminal[@]}" -fs 28 -geometry 10x1+60+60 -T clock -e sh -c \
  'while :; do printf "\r%s" "$(date +%H:%M:%S)"; sleep 0.2; done' &
children+=($!)
"${terminal[@]}" -fs 11 -geometry 110x22+60+190 -T text -e sh -c \
  'i=0; while :; do i=$((i + 1)); printf "%5d  The quick brown fox jumps over the lazy dog, and Vornic keeps it.\n" $i; sleep 0.05; done' &
children+=($!)
# A search may fail while windows come and go; it is asked again.
for window in clock text; do
  for (( i = 0; i < 100; ++i )); do
    xdotool search --onlyvisible --name "^$window\$" >/dev/null 2>&1 && break
    sleep 0.2
  done
done
sleep 0.5

"$program" record --duration 5 --overwrite --ignore-low-space "$movie"
frames=$(ffprobe -v error -select_streams v -count_packets \
  -show_entries stream=width,height,duration,nb_read_packets -of csv=p=0 "$movie")
IFS=, read -r width height seconds count <<<"$frames"
printf '%s: %s bytes, %s x %s, %s s, %s frames\n' \
  "$movie" "$(stat -c %s "$movie")" "$width" "$height" "$seconds" "$count"
