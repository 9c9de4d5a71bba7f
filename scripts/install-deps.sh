#!/bin/bash
# Installs what is missing of the Debian packages that the project needs, as root or by sudo.
# usage: install-deps.sh [GROUP...]   groups: build test generator bench ci (default: build)
set -euo pipefail

declare -A packages=(
    [build]="g++ make cmake ninja-build pkg-config libexpat1-dev zlib1g-dev libpcre2-dev python3"
    [test]="libgtest-dev libgmock-dev googletest libgmp-dev jq locales python3"
    [generator]="libxerces-c-dev libcli11-dev libxml2-utils"
    [bench]="libbenchmark-dev libexpat1-dev"
    [ci]="clang libclang-rt-14-dev clang-format binutils doxygen gcovr"
)

wanted=()
for group in "${@:-build}"; do
    [[ -n ${packages[$group]:-} ]] || { echo "install-deps.sh: unknown group '$group'" >&2; exit 2; }
    read -ra names <<< "${packages[$group]}"
    wanted+=("${names[@]}")
done

missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2> /dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

sudo=()
if [[ $(id -u) -ne 0 ]]; then
    command -v sudo > /dev/null || { echo "install-deps.sh: run as root, or install sudo, to get: ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
echo "Installing: ${missing[*]}" >&2
install=("${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}")
# The package lists may be absent or out of date; they are fetched only when they turn out to be.
if ! "${install[@]}" > /dev/null 2>&1; then
    "${sudo[@]}" apt-get update >&2
    "${install[@]}" >&2
fi
