#!/usr/bin/env bash
# Builds one preset and runs its tests; afterwards says which tests were skipped, and why.
#   scripts/test.sh <preset> [<warnings as errors: ON|OFF>] [<jobs>]
# Tests labelled "slow" run without sanitizers only, those labelled "one-thread" not under the thread sanitizer, those
# labelled "native" not in an emulator.
# Tests find real-world data where ZQAPI_TEST_DATA points.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:?preset}"
werror="${2:-OFF}"
jobs="${3:-$(nproc)}"
build="build/$preset"

left_out=()
case "$preset" in
asan) left_out=(--label-exclude '^slow$') ;;
aarch64) left_out=(--label-exclude '^(slow|native)$') ;;
tsan) left_out=(--label-exclude '^(slow|one-thread)$') ;;
esac
# intercept_tls_get_addr: gcc 12's runtime guesses where the thread-local data of a loaded library lies, and its leak
# checker crashes ("Tracer caught signal 11") where the guess is wrong.
export ASAN_OPTIONS="detect_leaks=1:detect_stack_use_after_return=1:intercept_tls_get_addr=0${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
export UBSAN_OPTIONS="print_stacktrace=1${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}"
export TSAN_OPTIONS="second_deadlock_stack=1:suppressions=$PWD/scripts/tsan.supp${TSAN_OPTIONS:+:$TSAN_OPTIONS}"

# A skipped GoogleTest says "file:line: Skipped" and the reason in the lines behind it.
print_skipped() {
    local log="$build/Testing/Temporary/LastTest.log"
    [ -f "$log" ] || return 0
    awk '/: Skipped$/ { reason = 1; next }
         reason && /^\[/ { reason = 0 }
         reason && NF { print "skipped: " $0 }' "$log" | sort | uniq -c
}

# Once more behind everything else, where a log that was cut short still has it.
print_failed() {
    awk '/ Testing: / { name = $3; count = 0 }
         { line[count++] = $0 }
         /^Test Failed/ {
             print "failed: " name
             for (i = count > 30 ? count - 30 : 0; i < count; ++i) print "    " line[i]
         }' "$build/Testing/Temporary/LastTest.log"
}

cmake --preset "$preset" -DZQAPI_WARNINGS_AS_ERRORS="$werror"
cmake --build --preset "$preset" -j "$jobs"
status=0
ctest --test-dir "$build" --no-tests=error --output-on-failure -j "$jobs" "${left_out[@]}" || status=$?
print_skipped
[ "$status" -eq 0 ] || print_failed
exit "$status"
