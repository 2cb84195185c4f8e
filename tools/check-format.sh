#!/usr/bin/env bash
# Fails where a source file is not laid out as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."
find src tests benchmarks -name '*.h' -print0 -o -name '*.cpp' -print0 \
  | xargs -0 -P "$(nproc)" -n 20 clang-format --dry-run --Werror
