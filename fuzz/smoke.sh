#!/bin/sh
# Runs every fuzz target for a short while, as many at once as there are
# cores, each from a fresh copy of its seeds (the committed seeds are never
# changed). Prints one line per target and exits non-zero when any target
# finds a crash, a leak, a timeout or an unbalanced allocation; the input
# that did it is kept under <build>/findings and the whole log under
# <build>/logs.
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
targets="table:8192 pdb:8192 coupling:4096 select:1100 args:1024 regex:512 surface:4096 shift_table:4096 search_list:1024"

# Runs one target from a fresh copy of its seeds; its exit status is kept
# in a file beside its log, so that targets can run side by side.
runTarget() {
    name=$1
    maxLen=$2
    corpus=$build/corpus/$name
    log=$build/logs/fuzz_$name.log
    rm -rf "$corpus"
    mkdir -p "$corpus"
    cp "$root/fuzz/seeds/$name"/* "$corpus"/
    status=0
    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len="$maxLen" -artifact_prefix="$build/findings/fuzz_$name-" "$corpus" \
        </dev/null >"$log" 2>&1 || status=$?
    echo $status >"$log.status"
}

report() {
    name=$1
    log=$build/logs/fuzz_$name.log
    if [ "$(cat "$log.status")" = 0 ]; then
        runs=$(sed -n 's/^Done \([0-9]*\) runs.*/\1/p' "$log" | tail -n 1)
        printf 'fuzz_%-9s ok      %s runs in %s s\n' "$name" "${runs:-?}" "$seconds"
        return 0
    fi
    printf 'fuzz_%-9s FAILED  (log: %s)\n' "$name" "$log"
    grep -E '^(==[0-9]+==ERROR|SUMMARY|dc fuzz:|artifact_prefix|Test unit written)' "$log" |
        sed 's/^/    /'
    return 1
}

# As many targets at once as the machine has cores; each still runs for the
# full time.
jobs=$(nproc 2>/dev/null || echo 1)
failed=0
set -- $targets
while [ $# -gt 0 ]; do
    batch=""
    n=0
    while [ $# -gt 0 ] && [ $n -lt "$jobs" ]; do
        runTarget "${1%%:*}" "${1#*:}" &
        batch="$batch ${1%%:*}"
        n=$((n + 1))
        shift
    done
    wait
    for name in $batch; do report "$name" || failed=1; done
done
exit $failed
