#!/usr/bin/env bash
# Runs every fuzz target, one after the other, for its share of the time. What one finds lies in build/fuzz/finds, what
# it found worth trying in build/fuzz/corpus/<target>.
#   scripts/fuzz.sh <minutes> [<jobs>] [<target>...]
set -euo pipefail
cd "$(dirname "$0")/.."
minutes="${1:?minutes}"
jobs="${2:-$(nproc)}"
shift $(($# < 2 ? $# : 2))
build=build/fuzz

cmake --preset fuzz
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for seeds in fuzz/corpus/*/; do targets+=("$(basename "$seeds")"); done
fi
cmake --build --preset fuzz -j "$jobs" --target "${targets[@]/#/fuzz_}"

seconds=$((minutes * 60 / ${#targets[@]}))
mkdir -p "$build/finds"
failed=0
rows=()
for target in "${targets[@]}"; do
    mkdir -p "$build/corpus/$target"
    log="$build/$target.log"
    result=ended
    # Libraries of the system keep memory until the process ends; the suites under asan look for leaks of ours.
    "$build/bin/fuzz_$target" -max_total_time="$seconds" -timeout=60 -detect_leaks=0 -print_final_stats=1 \
        -artifact_prefix="$build/finds/$target-" "$build/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1 || {
        result="FOUND SOMETHING, see $log"
        failed=1
    }
    executions="$(awk '/stat::number_of_executed_units/ { print $2 }' "$log")"
    rows+=("$(printf '%-18s %10s executions in %5d s, %s' "$target" "${executions:-?}" "$seconds" "$result")")
done
printf '%s\n' "${rows[@]}"
exit "$failed"
