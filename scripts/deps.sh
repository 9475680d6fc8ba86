#!/usr/bin/env bash
# Installs the Debian packages that the project builds and tests with; does nothing when all are there.
set -euo pipefail
packages=(
    build-essential cmake ninja-build pkg-config
    libpugixml-dev libzip-dev libxxhash-dev
    libpng-dev libtiff-dev libcli11-dev nlohmann-json3-dev
    libgtest-dev libbenchmark-dev zip xxd
)
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
