#!/usr/bin/env bash
# Runs the measurements of a build.
#   scripts/bench.sh <build directory>
set -euo pipefail
build="$(cd "${1:?build directory}" && pwd)"
export GENICAM_GENTL64_PATH="$build/lib"
for program in "$build"/bin/bench_*; do
    echo "== ${program##*/}"
    "$program"
done
