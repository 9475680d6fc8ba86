#!/usr/bin/env bash
# Installs the Debian packages that the project builds and tests with; does nothing when all are there.
#   scripts/deps.sh [aarch64|fuzz|coverage|mutations]...
# With words, also what these need beyond the usual.
set -euo pipefail
packages=(
    build-essential cmake ninja-build pkg-config
    libpugixml-dev libzip-dev libxxhash-dev
    libpng-dev libtiff-dev libcli11-dev nlohmann-json3-dev
    libgtest-dev libbenchmark-dev zip xxd
)
for word in "$@"; do
    case "$word" in
    # Headers that are the same everywhere (libcli11-dev, nlohmann-json3-dev) are the host's.
    aarch64)
        packages+=(
            g++-aarch64-linux-gnu qemu-user
            libpugixml-dev:arm64 libzip-dev:arm64 libxxhash-dev:arm64
            libpng-dev:arm64 libtiff-dev:arm64 libgtest-dev:arm64
        )
        ;;
    fuzz) packages+=(clang libclang-rt-dev) ;;
    coverage) packages+=(clang llvm libclang-rt-dev python3) ;;
    mutations) packages+=(python3) ;;
    *)
        echo "deps: nothing is known about $word" >&2
        exit 2
        ;;
    esac
done
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "Installing: ${missing[*]}"
case "${missing[*]}" in *:arm64*) $sudo dpkg --add-architecture arm64 ;; esac
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
