#!/usr/bin/env bash
# tools/render-icons.sh: renders the drawings of resources/icons into resources/icons/png, in all sizes that desktops
# ask for; the small ones have a drawing of their own, with whole pixels. The pictures are kept with the sources, so
# only who draws needs this. Needs rsvg-convert (librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")/../resources/icons"
mkdir -p png
render() # DRAWING SIDE
{
  rsvg-convert --width "$2" --height "$2" --output "png/$2.png" "$1.svg"
}
render com.kavlor.vornic-16 16
render com.kavlor.vornic-24 24
render com.kavlor.vornic-16 32
for side in 48 64 128 256; do render com.kavlor.vornic "$side"; done
