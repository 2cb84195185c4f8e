#!/usr/bin/env bash
# tools/check-commits.sh [BASE..HEAD]: fails where a commit of the range, merges aside, has a message that
# check-commit-msg.sh refuses, or adds more lines than a reader takes in. Lines that only moved do not count. Without a
# range: all commits since this check is there. A tree without that history passes, and it is said.
set -euo pipefail
tools=$(cd "$(dirname "$0")" && pwd)
source "$tools/check-commit-msg.sh"
since=3a34e759f4230589f7b62d00bd865d6cba68a006
most=800

if (( $# )); then
  range=$1
elif git rev-parse --quiet --verify "$since^{commit}" >/dev/null 2>&1 && git merge-base --is-ancestor "$since" HEAD; then
  range=$since..HEAD
else
  echo "check-commits: the history since ${since:0:12} is not here; nothing was checked"
  exit 0
fi

# Git tells what was moved by its colour.
added_lines()
{
  git -c color.diff.new=green -c color.diff.newMoved=cyan show --format= -M --color=always --color-moved=blocks \
    --color-moved-ws=ignore-all-space "$1" | grep -c $'^\e\\[32m+' || true
}

message=$(mktemp)
trap 'rm -f "$message"' EXIT
status=0
declare -A added
while read -r lines _ path; do
  if [[ $path ]]; then
    added[$commit]=$(( ${added[$commit]-0} + ${lines/-/0} ))
  elif [[ $lines ]]; then
    commit=$lines
  fi
done < <(git log --no-merges --numstat --format=%H "$range")
while IFS= read -r -d '' entry; do
  commit=${entry%%$'\n'*}
  complain() { printf '%s: %s\n' "${commit:0:12}" "$1" >&2; status=1; }
  printf '%s\n' "${entry#*$'\n'}" >"$message"
  said=$(check_message "$message" 2>&1) || complain "$said"
  read -r title <"$message"
  [[ $title != fixup!* && $title != squash!* ]] || complain "is to be melted into another commit: $title"
  # What only moved is looked for where it matters: that takes git longer than all the rest.
  (( ${added[$commit]-0} > most )) || continue
  count=$(added_lines "$commit")
  (( count <= most )) || complain "adds $count lines, more than $most: $title"
done < <(git log -z --no-merges --reverse --format=%H%n%B "$range")
exit "$status"
