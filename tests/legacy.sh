#!/usr/bin/env bash
# Checks the example program "legacy", whose path is the first argument.
set -euo pipefail

folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
fail()
{
    echo "FAILED: $*" >&2
    cat "$folder"/* >&2
    exit 1
}

"$1" "$folder/journal" 5 | tr -d '\r' > "$folder/out" || fail "exit code $?"
day='[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}'
[[ "$(grep -cE "^$day #[1-5] level [0-9]+ %$" "$folder/journal")" == 5 && "$(wc -l < "$folder/journal")" == 5 ]] || fail 'not five readings'
[[ "$(cut -d'#' -f2 "$folder/journal" | cut -d' ' -f1 | tr -d '\n')" == 12345 ]] || fail 'not in order'
grep -qx "$(wc -c < "$folder/journal") bytes in $folder/journal" "$folder/out" || fail 'not the length of the journal'

code=0
"$1" > /dev/null 2> "$folder/usage" || code=$?
[[ $code == 2 ]] || fail "without arguments: exit code $code"
grep -q '^usage: legacy JOURNAL READINGS' "$folder/usage" || fail "usage"
code=0
"$1" "$folder/none/journal" 1 > "$folder/refused" 2>&1 || code=$?
[[ $code == 1 ]] || fail "no such folder: exit code $code"
grep -q "cannot write $folder/none/journal" "$folder/refused" || fail "what it tells"
echo 'legacy: all checks passed'
