#!/usr/bin/env bash
# Acquires pictures from the three simulated cameras into demo-out/SERIAL/ and prints what was delivered. Fails when a
# camera delivers fewer than ten, or one that is the same as the one before.
#   scripts/demo.sh <build directory>
set -euo pipefail
build="$(cd "${1:?build directory}" && pwd)"
cd "$(dirname "$0")/.."
cameras=(SIM-U3V-0001 SIM-GEV-0001 SIM-CXP-0001)
frames=12
needed=10
unset GENICAM_GENTL64_PATH

fail() {
    echo "demo: $1" >&2
    exit 1
}

# Prints the pictures of a folder that differ from their predecessor; fails at one that does not.
count_pictures() {
    local last="" count=0
    for picture in "$1"/*.png; do
        [ -s "$picture" ] || fail "no picture in $1"
        if [ -n "$last" ] && cmp -s "$last" "$picture"; then
            fail "$picture is the same picture as $last"
        fi
        last="$picture"
        count=$((count + 1))
    done
    echo "$count"
}

rows=()
for camera in "${cameras[@]}"; do
    folder="demo-out/$camera"
    rm -rf "$folder"
    result="$("$build/bin/zq" grab "$camera" -n "$frames" -o "$folder")" || fail "grabbing from $camera failed"
    pictures="$(count_pictures "$folder")"
    [ "$pictures" -ge "$needed" ] || fail "$camera: $pictures pictures, not $needed"
    pattern='^.*: ([0-9]+) frames, ([0-9]+) complete, ([0-9]+) incomplete, ([0-9?]+) lost, ([0-9.]+) fps, ([0-9.]+) MB/s$'
    [[ "$result" =~ $pattern ]] || fail "not understood: $result"
    rows+=("$(printf '%-14s %8s %9s %11s %6s %9s %9s %9s' "$camera" "${BASH_REMATCH[@]:1:6}" "$pictures")")
done

printf '%-14s %8s %9s %11s %6s %9s %9s %9s\n' camera frames complete incomplete lost fps MB/s pictures
printf '%s\n' "${rows[@]}"
echo "The pictures are in demo-out/."
