#!/usr/bin/env bash
# tools/overlay-sheet.sh BUILD [PICTURE]: photographs the overlay in its states, with a compositing manager (left)
# and without (right), on private virtual displays, and puts the photographs on one sheet. BUILD is a build folder
# with the program overlay_stage; PICTURE is docs/pictures/overlay.png when it is not given.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
stage=$(realpath "${1:?a build folder}")/tests/overlay/overlay_stage
sheet=$(realpath -m "${2:-$root/docs/pictures/overlay.png}")
work=$(mktemp -d)
children=()
cleanup() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
quiet=(ffmpeg -nostdin -v error -y)

# A picture with soft edges and a hole, so that half opacity can be told from none.
"${quiet[@]}" -f lavfi -i "color=c=orange:s=160x120,format=rgba,geq=r='255':g='90+X':b='40':a='if(lt(hypot(X-80,Y-60),20),0,if(lt(hypot((X-80)/80,(Y-60)/60),1),255,0))'" \
  -frames:v 1 "$work/logo.png"
"${quiet[@]}" -f lavfi -i "gradients=s=640x400:c0=0x27405e:c1=0xa07050:x0=0:y0=0:x1=640:y1=400:seed=7:speed=0.00001" \
  -frames:v 1 "$work/desktop.png"

say() { echo "$*" >&"${stage_pipe[1]}"; until read -r -u "${stage_pipe[0]}" answer && [[ $answer == ok ]]; do :; done; }

shoot() { # NAME: a photograph with its name on it
  sleep 0.4
  "${quiet[@]}" -f x11grab -video_size 640x400 -draw_mouse 0 -i "$DISPLAY" -frames:v 1 "$work/shot.png"
  "${quiet[@]}" -i "$work/shot.png" -vf "pad=644:424:2:2:white,drawtext=text='$1, $kind':x=6:y=406:fontsize=14:fontcolor=black" \
    -frames:v 1 "$work/$number-$kind.png"
  number=$((number + 1))
}

photograph() { # KIND
  kind=$1
  number=1
  rm -f "$work/display"
  Xvfb -displayfd 3 -screen 0 640x400x24 -nolisten tcp -noreset 3>"$work/display" 2>/dev/null &
  children+=($!)
  for (( i = 0; i < 100; ++i )); do [[ -s $work/display ]] && break; sleep 0.1; done
  DISPLAY=:$(<"$work/display")
  export DISPLAY QT_QPA_PLATFORM=xcb
  openbox >/dev/null 2>&1 &
  children+=($!)
  if [[ $kind == composited ]]; then
    picom --config /dev/null --backend xrender 2>/dev/null &
    children+=($!)
  fi
  # The desktop is a window: a compositing manager shows nothing of a bare root window.
  ffplay -v quiet -left 0 -top 0 -noborder -loop 0 "$work/desktop.png" >/dev/null 2>&1 </dev/null &
  children+=($!)
  sleep 1.5
  xterm -fa 'DejaVu Sans Mono' -fs 10 -geometry 40x9+130+110 -e sh -c \
    'for i in $(seq 8); do echo "$i  a window of another program"; done; sleep 1000' &
  children+=($!)
  sleep 1
  coproc stage_pipe { exec "$stage" 2>/dev/null; }
  children+=("$stage_pipe_PID")
  read -r -u "${stage_pipe[0]}" _

  say set recordRegion 1
  say rect 80 80 420 240
  say place
  shoot 'idle'
  xdotool mousemove 100 300 click 1 mousemove 630 390
  shoot 'with the keyboard focus'
  say recording 1
  shoot 'recording'
  say recording 0
  say set logoContext.LogoValidate true
  say set logoContext.LogoText A logo of text
  say set logoContext.logoPositionX 60
  say set logoContext.logoPositionY 60
  say set logoContext.LogoScale 1.2
  say set logoContext.LogoRotation 30
  say place
  shoot 'text logo, rotated by 30 degrees'
  say recording 1
  shoot 'the same, recording'
  say recording 0
  say set logoContext.LogoRotation 0
  say set recordRegion 0
  say place
  shoot 'full display with logo'
  say picture "$work/logo.png"
  say set logoContext.LogoType 1
  say set logoContext.LogoTransparency 128
  say set logoContext.logoPositionX 160
  say set recordRegion 1
  say place
  shoot 'picture logo at half opacity'
  say set logoContext.LogoRotation 45
  say recording 1
  shoot 'the same turned by 45 degrees, recording'
  exec {stage_pipe[1]}>&-
  wait "$stage_pipe_PID" 2>/dev/null || true
}

photograph composited
photograph plain
inputs=()
layout=()
index=0
for (( row = 1; row <= 8; ++row )); do
  for column in composited plain; do
    inputs+=(-i "$work/$row-$column.png")
    x=$([[ $column == plain ]] && echo 644 || echo 0)
    layout+=("${x}_$(( (row - 1) * 424 ))")
    index=$((index + 1))
  done
done
mkdir -p "$(dirname "$sheet")"
"${quiet[@]}" "${inputs[@]}" -filter_complex "xstack=inputs=$index:layout=$(IFS='|'; echo "${layout[*]}")" -frames:v 1 "$sheet"
echo "$sheet"
