#!/usr/bin/env bash
# Fails where a source file is not laid out as .clang-format says, or has braces around one statement on one line.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0
find src tests benchmarks tools -name '*.h' -print0 -o -name '*.cpp' -print0 \
  | xargs -0 -P "$(nproc)" -n 20 clang-format --dry-run --Werror || status=1
find src tests benchmarks tools -name '*.h' -print0 -o -name '*.cpp' -print0 | xargs -0 tools/check-braces.py || status=1
exit "$status"
