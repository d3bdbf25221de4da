#!/usr/bin/env bash
# mutation.sh PROGRAM NAME GROUP
# With this fault switched on, the self-test says that failures are expected and has some, all of
# them in the group with this number.
set -uo pipefail

problem() { printf '%s\n%s\n' "$output" "$1" >&2; exit 1; }

output=$(QS_SELFTEST_MUTATE=$2 "$1" --selftest)
status=$?
failed=$(awk '/^== / { group++ } /^FAIL/ { print group + 0 }' <<<"$output" | sort -u | xargs)

[ "$status" -eq 1 ] || problem "It ended with status $status."
[[ ${output%%$'\n'*} == *" — MUTATION \"$2\": failures are EXPECTED" ]] ||
  problem "Its first line does not say that failures are expected."
[ "$failed" = "$3" ] || problem "Checks failed in these groups: ${failed:-none}; expected: $3."
