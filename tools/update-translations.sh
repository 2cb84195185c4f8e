#!/usr/bin/env bash
# tools/update-translations.sh: brings resources/i18n up to date with the texts of the program. New ones are marked
# unfinished; ./test fails until they are translated.
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate6 || echo /usr/lib/qt6/bin/lupdate)
"$lupdate" -silent -no-obsolete -locations none -source-language en src resources/ui -ts resources/i18n/vornic_*.ts
