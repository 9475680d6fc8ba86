#!/usr/bin/env bash
# Which branches of the library the tests reach: a table by file, and the branches that none reaches.
#   scripts/coverage.sh [<jobs>]
# build/coverage/coverage.txt is the report by file, build/coverage/uncovered.txt lists each line that decides something
# with a branch that no test takes.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${1:-$(nproc)}"
build=build/coverage
# Those that test the library; the others would only repeat.
suites=(unit_genapi unit_genapi_allocations unit_ZqSDKCommon unit_ZqGenTLCommon unit_ZqApi_TL faults integration_zqapi)

cmake --preset coverage
cmake --build --preset coverage -j "$jobs" --target "${suites[@]}" zqgentl
find "$build" -name '*.gcda' -delete
# Suites that were not built are tests of that name to ctest.
ctest --test-dir "$build" --no-tests=error --output-on-failure -j "$jobs" \
    -E '_NOT_BUILT$|^(contract_|floors\.|consumer\.|exports\.|soak\.|Fuzz\.)' ||
    echo "coverage: not every test passed" >&2
gcovr --root . "$build" -j "$jobs" --branches --exclude-throw-branches --exclude-unreachable-branches \
    --filter 'ZqApi_TL/' --filter 'ZqSDKCommon/' --filter 'ZqGenTLCommon/' --filter 'genapi/' \
    --txt "$build/coverage.txt" --json "$build/coverage.json"
scripts/coverage_report.py "$build/coverage.json" "$build/uncovered.txt"
