#!/usr/bin/env bash
# Builds an application in a folder of its own, as if no source of the library were there, and runs it.
#   check.sh find_package|pkg_config <prefix> <this folder> <folder to build in>
# CXX, TOOLCHAIN, EMULATOR and LIBDIR say how the library was built.
set -euo pipefail
way="$1" prefix="$2" here="$3" build="$4"
rm -rf "$build"
mkdir -p "$build"
case "$way" in
find_package)
    cmake -S "$here/application" -B "$build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$CXX" \
        ${TOOLCHAIN:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN"}
    cmake --build "$build"
    GENICAM_GENTL64_PATH="$(cat "$build/producer")"
    ;;
pkg_config)
    export PKG_CONFIG_PATH="$prefix/$LIBDIR/pkgconfig"
    read -ra flags <<<"$(pkg-config --cflags --libs zqapi)"
    "$CXX" -std=c++14 "$here/../../../examples/grab.cpp" -o "$build/application" "${flags[@]}" \
        -Wl,-rpath,"$(pkg-config --variable=libdir zqapi)"
    GENICAM_GENTL64_PATH="$(pkg-config --variable=producerdir zqapi)"
    ;;
esac
export GENICAM_GENTL64_PATH
[[ "$GENICAM_GENTL64_PATH" = "$prefix"/* ]] || {
    echo "not the installed producer: $GENICAM_GENTL64_PATH" >&2
    exit 1
}
size="$($EMULATOR "$build/application")"
echo "$size"
[ "$size" = "640 x 480 pixels" ]
