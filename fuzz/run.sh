#!/usr/bin/env bash
# Builds the fuzz targets and runs each for the given number of seconds (default: 60) on a copy of its seeds.
# The first finding fails; its input is then in build/fuzz/findings/.
# A long run over night: fuzz/run.sh 10000
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.."

seconds=${1:-60}
cmake --preset fuzz
cmake --build --preset fuzz

export OMP_NUM_THREADS=1
export UBSAN_OPTIONS=print_stacktrace=1
export ASAN_OPTIONS=allocator_may_return_null=1:malloc_context_size=8:quarantine_size_mb=16
findings=build/fuzz/findings
corpus=$(mktemp -d)
trap 'rm -rf "$corpus"' EXIT
mkdir -p "$findings"

# One byte of a file may cost a kilobyte of memory, and inputs have at most four: no block has reason to be
# larger than the limit. What takes longer than five seconds hangs.
fuzz() {
    local target=$1 dictionary=$2
    mkdir "$corpus/$target"
    "build/fuzz/fuzz/${target}_fuzz" -max_total_time="$seconds" -max_len=4096 -malloc_limit_mb=64 -timeout=5 \
        -dict="fuzz/dictionaries/$dictionary.dict" -artifact_prefix="$findings/" -verbosity=0 \
        -print_final_stats=1 "$corpus/$target" "fuzz/seeds/$target" 2> "$corpus/$target.log" ||
        { cat "$corpus/$target.log" >&2; return 1; }
    echo "$target: $(sed -n 's/^stat::number_of_executed_units: *//p' "$corpus/$target.log") inputs, no finding"
}

# Two at a time; the third is the fastest.
fuzz mesh_2d mesh &
failed=0
fuzz mesh_3d mesh || failed=1
wait "$!" || failed=1
[[ $failed == 0 ]]
fuzz velocity velocity
