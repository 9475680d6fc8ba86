#!/usr/bin/env bash
# Shows that the library builds and runs with the node maps of an SDK in place of genapi/: lays out our own headers and
# library as an SDK has them, builds against that and reads a feature of a simulated camera.
#   scripts/sdk.sh [<jobs>]
# An SDK that is installed is named by ZQAPI_GENICAM_SDK in the environment and taken instead.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${1:-$(nproc)}"
build=build/sdk
root="${ZQAPI_GENICAM_SDK:-}"

if [ -z "$root" ]; then
    root="$(mktemp -d)"
    trap 'rm -rf "$root"' EXIT
    cmake --preset release
    cmake --build --preset release -j "$jobs" --target zqgenapi
    libraries="$root/library/CPP/lib/Linux64"
    mkdir -p "$libraries" "$root/library/CPP"
    cp -r genapi/include "$root/library/CPP/include"
    cp build/release/lib/libzqgenapi.so.3.0.0 "$libraries/libzqgenapi.so.3"
    ln -s libzqgenapi.so.3 "$libraries/libGenApi_gcc.so"
    ln -s libzqgenapi.so.3 "$libraries/libGCBase_gcc.so"
fi

rm -f "$build/CMakeCache.txt" # it knows the SDK of the last run
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZQAPI_BUILD_TESTS=OFF -DZQAPI_GENICAM_SDK="$root"
cmake --build "$build" -j "$jobs" --target ZqApi zq zqgentl
if [ -e "$build/lib/libzqgenapi.so" ]; then
    echo "genapi/ has been built all the same" >&2
    exit 1
fi
GENICAM_GENTL64_PATH="$PWD/$build/lib" "$build/bin/zq" list
echo "built against $root"
