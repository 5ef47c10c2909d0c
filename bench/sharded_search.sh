#!/bin/bash
# The sharded homology search on this machine: a 20-residue segment of
# ubiquitin's couplings searched over 1,000 structures (copies of ubiquitin
# and a fusion peptide) by one DC process and by dc-search with 1, 2 and 4
# shards on GNU parallel, and the time of the merge alone against the whole
# search (target: under 1 %; the merge as dc-search runs it on its own work
# directory, moving the first shard's report into place). Also checks that every sharded report equals
# the single one.
#
# Usage: bench/sharded_search.sh [BUILD_DIR]   (default build/bench)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build/bench}" && pwd)
[ -x "$build/DC" ] && [ -x "$build/dc-search-merge" ] || {
    echo "sharded_search: build first (make bench, or cmake --build $build)"; exit 2; }
command -v parallel >/dev/null || { echo "sharded_search: GNU parallel is not installed"; exit 2; }
export DC=$build/DC DC_SEARCH_MERGE=$build/dc-search-merge

work=$(mktemp -d "${TMPDIR:-/tmp}/dc-sharded-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work"
cp "$root/examples/ubq/1ubq_h.pdb" ubq.pdb
cp "$root/examples/ubq/hafp_a.pdb" pep.pdb
for i in $(seq 1 1000); do
    if [ $((i % 4)) -eq 0 ]; then ln -s pep.pdb "s$i.pdb"; else ln -s ubq.pdb "s$i.pdb"; fi
    echo "s$i.pdb"
done >list
search=(-inD "$root/examples/ubq/ubq_nh.tab" -r1 20 -rN 39 -list list -path .)

seconds() { echo "$EPOCHREALTIME"; }
elapsed() { echo "$2 - $1" | bc -l; }

t0=$(seconds); "$DC" "${search[@]}" -outS single.txt 2>/dev/null; t1=$(seconds)
single=$(elapsed "$t0" "$t1")
printf "1000 structures, %d report bytes\n" "$(wc -c <single.txt)"
printf "one DC process:        %6.2f s\n" "$single"
ok=1
for n in 1 2 4; do
    t0=$(seconds)
    "$root/tools/dc-search" --engine parallel --shards "$n" --workdir "w$n" "${search[@]}" -outS "s$n.txt" 2>/dev/null
    t1=$(seconds)
    same="identical"; cmp -s single.txt "s$n.txt" || { same="DIFFERENT"; ok=0; }
    printf "dc-search, %d shard(s): %6.2f s  (%.2f x one process; report %s)\n" "$n" \
        "$(elapsed "$t0" "$t1")" "$(echo "$single / $(elapsed "$t0" "$t1")" | bc -l)" "$same"
done
t0=$(seconds); "$DC_SEARCH_MERGE" --consume --out merged.txt w4 4 2>/dev/null; t1=$(seconds)
cmp -s single.txt merged.txt || { echo "sharded_search: the merge alone differs"; ok=0; }
merge=$(elapsed "$t0" "$t1")
share=$(echo "100 * $merge / $single" | bc -l)
printf "merge of 4 shards alone: %.3f s = %.2f %% of the one-process search (target under 1 %%): " "$merge" "$share"
if [ "$(echo "$share < 1" | bc -l)" -eq 1 ] && [ $ok -eq 1 ]; then echo "met"; else echo "MISSED"; exit 1; fi
