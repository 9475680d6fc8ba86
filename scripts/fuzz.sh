#!/usr/bin/env bash
# Runs every fuzz target, one after the other, for its share of the time: processor time, however busy the machine is.
# What one finds lies in build/fuzz/finds, what it found worth trying in build/fuzz/corpus/<target>.
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

# Seconds of processor time of the commands that have ended so far.
used() { awk -v hz="$(getconf CLK_TCK)" '{ print int(($16 + $17) / hz) }' "/proc/$$/stat"; }

seconds=$((minutes * 60 / ${#targets[@]}))
mkdir -p "$build/finds"
failed=0
for target in "${targets[@]}"; do
    mkdir -p "$build/corpus/$target"
    log="$build/$target.log"
    result=ended
    begin=$(used)
    spent=0
    executions=0
    while [ "$spent" -lt "$seconds" ]; do
        left=$((seconds - spent))
        # Libraries of the system keep memory until the process ends; the suites under asan look for leaks of ours.
        "$build/bin/fuzz_$target" -max_total_time=$((left < 5 ? 5 : left)) -timeout=60 -detect_leaks=0 \
            -print_final_stats=1 -artifact_prefix="$build/finds/$target-" "$build/corpus/$target" "fuzz/corpus/$target" \
            >"$log" 2>&1 || result="FOUND SOMETHING, see $log"
        executions=$((executions + $(awk '/stat::number_of_executed_units/ { n = $2 } END { print n + 0 }' "$log")))
        spent=$(($(used) - begin))
        if [ "$result" != ended ]; then
            failed=1
            break
        fi
    done
    printf '%-18s %10d executions in %5d s, %s\n' "$target" "$executions" "$spent" "$result"
done
exit "$failed"
