#!/usr/bin/env bash
# tools/controls-sheet.sh BUILD [PICTURE]: paints every control in every state, at 1, 1.5 and 2 pixels a point.
# BUILD is a build folder with the program controls_sheet; PICTURE is docs/pictures/controls.png when it is not
# given.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
picture=${2:-$root/docs/pictures/controls.png}
mkdir -p "$(dirname "$picture")"
"${1:?a build folder}/tests/controls/controls_sheet" "$picture"
echo "$picture"
