#!/usr/bin/env bash
# Fails where a file includes from a floor above its own, where files include each other in a circle, and where the
# library orders memory in a way that only some processors keep.
#   check.sh <root of the sources>
set -euo pipefail
shopt -s globstar nullglob
cd "$1"

# folder | what it may include of the project, as extended regular expressions of the text behind #include
floors=(
    'gentl|-'
    'genapi|"genapi/src/.*|<(Base|GenApi)/.*'
    'include/ZqApi|<ZqApi/.*|<(Base|GenApi)/.*|<GenTL\.h>'
    'ZqSDKCommon|"ZqSDKCommon/.*|<ZqApi/.*|<(Base|GenApi)/.*|<GenTL\.h>'
    'ZqGenTLCommon|"Zq(GenTL|SDK)Common/.*|<ZqApi/.*|<(Base|GenApi)/.*|<GenTL\.h>'
    'ZqApi_TL|"Zq(Api_TL|GenTLCommon|SDKCommon)/.*|<ZqApi/.*|<(Base|GenApi)/.*|<GenTL\.h>'
    'producer/sim|"producer/sim/.*|"gentl/GenTL\.h"'
    'producer|"producer/.*|"gentl/GenTL\.h"'
    'tools/zq|"tools/zq/.*|<ZqApi/ZqApi\.h>'
    'examples|<ZqApi/ZqApi\.h>'
)
# Everything that is the project's, and so must be in the list above to be included.
ours='^(".*|<(ZqApi|Base|GenApi)/.*|<GenTL\.h>)'

failed=0
fail() {
    echo "$1" >&2
    failed=1
}

# Prints "file text" for each include line of a folder's files.
includes() {
    grep -EH '^[[:space:]]*#[[:space:]]*include' "$1"/**/*.{h,c,cpp,def} /dev/null |
        sed -E 's/^([^:]*):[[:space:]]*#[[:space:]]*include[[:space:]]*([<"][^>"]*[>"]).*/\1 \2/'
}

declare -A judged=()
lines=0
for row in "${floors[@]}"; do
    folder="${row%%|*}"
    allowed="^(${row#*|})$"
    found="$(includes "$folder" || true)"
    while read -r file text; do
        # A file of a folder within a folder is judged by the inner one, which stands first.
        [ -n "$file" ] && [ "${judged[$file]:-$folder}" = "$folder" ] || continue
        judged[$file]="$folder"
        lines=$((lines + 1))
        [[ "$text" =~ $ours ]] || continue
        [[ "$text" =~ $allowed ]] || fail "$file includes $text, which does not lie on or below its floor"
    done <<<"$found"
done
[ "$lines" -gt 0 ] || fail "no include line found"

# Each file as the compiler finds it, so that both ways of writing an include name the same one.
circle="$(for row in "${floors[@]}"; do includes "${row%%|*}" || true; done |
    sed -E 's/"([^"]*)"/\1/; s,<(ZqApi/[^>]*)>,include/\1,; s,<((Base|GenApi)/[^>]*)>,genapi/include/\1,; /</d' |
    sort -u | tsort 2>&1 >/dev/null || true)"
[ -z "$circle" ] || fail "these include each other: ${circle//tsort: /}"

# Right on every processor by construction: a missing barrier doesn't show on those that order memory strongly.
for file in {genapi,ZqSDKCommon,ZqGenTLCommon,ZqApi_TL,producer}/**/*.{h,cpp}; do
    if grep -nE 'memory_order_(relaxed|consume)|memory_order::(relaxed|consume)|\bvolatile\b' "$file" |
        grep -vE 'asm volatile'; then
        fail "$file orders memory in a way that not every processor keeps"
    fi
done

[ "$failed" -eq 0 ] && echo "$lines include lines, none upward"
exit "$failed"
