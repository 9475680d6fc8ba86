#!/usr/bin/env bash
# Which outcomes of the library's conditions the tests bring about: a table by folder, and the outcomes that none does.
#   scripts/coverage.sh [<jobs>]
# build/coverage/coverage.txt is the report by file, build/coverage/uncovered.txt lists each condition of which an outcome
# never came. The corpus counts where ZQAPI_TEST_DATA is set.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${1:-$(nproc)}"
build=build/coverage
# Those that test the library; the others would only repeat.
suites=(
    unit_genapi unit_genapi_allocations unit_ZqSDKCommon unit_ZqGenTLCommon unit_ZqApi_TL
    faults integration_zqapi test_features
)
for corpus in fuzz/corpus/*/; do suites+=("replay_$(basename "$corpus")"); done

cmake --preset coverage
cmake --build --preset coverage -j "$jobs" --target "${suites[@]}" zqgentl
profile="$PWD/$build/profile"
rm -rf "$profile"
# %c: counted into the file itself while the program runs; %m: a file per library and program.
export LLVM_PROFILE_FILE="$profile/%c%m.profraw"
# Suites that were not built are tests of that name to ctest.
ctest --test-dir "$build" --no-tests=error --output-on-failure -j "$jobs" \
    -E '_NOT_BUILT$|^(contract_|floors\.|consumer\.|exports\.|soak\.)' ||
    echo "coverage: not every test passed" >&2

llvm-profdata merge "$profile"/*.profraw -o "$build/merged.profdata"
objects=("$build/lib/libZqApi.so" -object "$build/lib/libzqgenapi.so")
for suite in "${suites[@]}"; do objects+=(-object "$build/bin/$suite"); done
# The node-map library's files are named from its own folder on. "Mismatched data" are inline functions that an object
# describes and does not hold: they are counted where they run.
llvm-cov show "${objects[@]}" -instr-profile "$build/merged.profdata" --show-branches=count \
    --path-equivalence="$PWD/$build,$PWD" >"$build/show.txt"
llvm-cov export "${objects[@]}" -instr-profile "$build/merged.profdata" --skip-expansions >"$build/export.json"
scripts/coverage_report.py "$build/coverage.txt" "$build/uncovered.txt" "$build/show.txt" "$build/export.json"
