#!/usr/bin/env bash
# Compares what a shared library exports with a list of demangled names, one a line.
#   [NM=<program>] check.sh <library> <list>
# What the C++ runtime has to share between libraries (its own template instances, and whatever a sanitizer puts in) is
# not the library's interface and is left out.
set -euo pipefail
found="$("${NM:-nm}" -D --defined-only --format=posix "$1" | awk '$2 ~ /[TVWDBRu]/ {print $1}' | c++filt |
    grep -vE '^(_init|_fini|_edata|_end|__bss_start|(guard variable|typeinfo|typeinfo name|vtable|VTT) for std::|std::|__(asan|ubsan|tsan|odr_asan)|non-virtual thunk)' | sort -u)"
diff <(sort -u "$2") <(echo "$found") && echo "$(echo "$found" | wc -l) exported names, as listed"
