#!/bin/bash
# The sharded search on a real Slurm installation (make test-slurm; not in
# CI, since Slurm needs its daemons): a search over 36 structures run once
# by DC and once as a 4-task job array through dc-search must give the same
# report byte for byte and the same summaries and messages.
#
# Usage: tests/slurm_search.sh [BUILD_DIR]   (default build/release)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build/release}" && pwd)
command -v sbatch >/dev/null || { echo "slurm_search: sbatch not found (install and start Slurm)"; exit 2; }
sinfo -h >/dev/null 2>&1 || { echo "slurm_search: no Slurm controller answers"; exit 2; }

work=$(mktemp -d "$root/build/slurm-search.XXXXXX")  # on a file system the nodes share
trap 'rm -rf "$work"' EXIT
cd "$work"
cp "$root/examples/ubq/1ubq_h.pdb" ubq.pdb
cp "$root/examples/ubq/hafp_a.pdb" pep.pdb
cp "$root/tests/data/simulation/peptide.pdb" short.pdb
{
    echo "# 36 structures: a missing file, one shorter than the segment, comments"
    for i in $(seq 1 11); do
        printf 'ubq.pdb\npep.pdb\n'
        [ "$i" -ne 4 ] || printf 'missing.pdb\n\n   \nshort.pdb\n#comment\n'
        echo "ubq.pdb 10 60"
    done
} >list
search=(-inD "$root/examples/ubq/ubq_nh.tab" -r1 20 -rN 39 -list list -path . -ref ubq.pdb -bb)

"$build/DC" "${search[@]}" -outS single.txt 2>single.err || true
DC=$build/DC DC_SEARCH_MERGE=$build/dc-search-merge \
    "$root/tools/dc-search" --engine slurm --shards 4 --workdir shards "${search[@]}" -outS slurm.txt 2>slurm.err
grep -v '^REMARK Memory' single.err | sed '/^$/d' >single.msg
sed '/^$/d' slurm.err >slurm.msg
if cmp -s single.txt slurm.txt && cmp -s single.msg slurm.msg; then
    echo "slurm_search: 4 Slurm array tasks gave the single search's report ($(wc -c <single.txt) bytes) and $(wc -l <single.msg) summary and message lines: identical"
else
    echo "slurm_search: the Slurm search differs from the single search"
    diff single.msg slurm.msg | head -20
    exit 1
fi
