#!/usr/bin/env bash
# tools/render-skin.sh: renders resources/skin/*.svg into resources/skin/png, at one and at two pixels a point.
# The pictures are kept with the sources, so only who draws needs this. Needs rsvg-convert (librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")/../resources/skin"
mkdir -p png
for picture in *.svg; do
  name=${picture%.svg}
  rsvg-convert --zoom 1 --output "png/$name.png" "$picture"
  rsvg-convert --zoom 2 --output "png/$name@2x.png" "$picture"
done
for rendered in png/*.png; do
  name=$(basename "$rendered" .png)
  [[ -e ${name%@2x}.svg ]] || rm "$rendered"
done
