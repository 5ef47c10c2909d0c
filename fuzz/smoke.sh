#!/bin/sh
# Runs every fuzz target for a short while, one after another, each from a
# fresh copy of its seeds (the committed seeds are never changed). Prints one
# line per target and exits non-zero when any target finds a crash, a leak, a
# timeout or an unbalanced allocation; the input that did it is kept under
# <build>/findings and the whole log under <build>/logs.
#
# Usage: fuzz/smoke.sh BUILD_DIR [SECONDS]
set -eu
if [ $# -lt 1 ] || [ ! -d "$1/fuzz" ]; then
    echo "usage: $0 BUILD_DIR [SECONDS] (BUILD_DIR as made by make fuzz)" >&2
    exit 2
fi
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
seconds=${2:-20}
mkdir -p "$build/findings" "$build/logs"

# Target name and the longest input it is given (a little above its largest seed).
targets="table:8192 pdb:8192 coupling:4096 select:1100 args:1024 regex:512 surface:4096 shift_table:4096"

failed=0
for spec in $targets; do
    name=${spec%%:*}
    maxLen=${spec#*:}
    corpus=$build/corpus/$name
    log=$build/logs/fuzz_$name.log
    rm -rf "$corpus"
    mkdir -p "$corpus"
    cp "$root/fuzz/seeds/$name"/* "$corpus"/
    if UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len="$maxLen" -artifact_prefix="$build/findings/fuzz_$name-" "$corpus" \
        </dev/null >"$log" 2>&1; then
        runs=$(sed -n 's/^Done \([0-9]*\) runs.*/\1/p' "$log" | tail -n 1)
        printf 'fuzz_%-9s ok      %s runs in %s s\n' "$name" "${runs:-?}" "$seconds"
    else
        failed=1
        printf 'fuzz_%-9s FAILED  (log: %s)\n' "$name" "$log"
        grep -E '^(==[0-9]+==ERROR|SUMMARY|dc fuzz:|artifact_prefix|Test unit written)' "$log" |
            sed 's/^/    /'
    fi
done
exit $failed
