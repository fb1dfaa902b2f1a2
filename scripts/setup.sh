#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks. Does nothing, and asks for nothing, where all is there.
#   scripts/setup.sh run    what building and driving needs
#   scripts/setup.sh test   that, and what the tests need besides
set -euo pipefail
cd "$(dirname "$0")/.."

run_packages=(g++ cmake ninja-build ccache libtinyobjloader-dev libassimp-dev libtinygltf-dev nlohmann-json3-dev libcli11-dev
    libfmt-dev libfontconfig-dev libfreetype-dev libpng-dev libjpeg-dev libembree-dev zlib1g-dev fonts-liberation
    qt6-base-dev libqt6opengl6-dev libsdl2-dev libegl-dev libgl1-mesa-dri)
test_packages=(libgtest-dev clang libclang-rt-14-dev nodejs npm xvfb xdotool)

case "${1:-}" in
run) packages=("${run_packages[@]}") ;;
test) packages=("${run_packages[@]}" "${test_packages[@]}") ;;
*)
    echo "usage: scripts/setup.sh run|test" >&2
    exit 2
    ;;
esac

# A command that is already there counts, whichever package it came from.
declare -A command_of=([nodejs]=node [npm]=npm [g++]=g++ [cmake]=cmake [ninja-build]=ninja [ccache]=ccache [clang]=clang++)

is_there() {
    local command=${command_of[$1]:-}
    if [ -n "$command" ]; then
        command -v "$command" >/dev/null
    else
        dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'
    fi
}

missing=()
for package in "${packages[@]}"; do
    is_there "$package" || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "These packages are missing: ${missing[*]}. Install them as root, or install sudo." >&2
            exit 1
        }
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# Large, and only one test asks for it: where it can't be had, that test says so and is skipped.
if [ "$1" = test ] && ! command -v blender >/dev/null; then
    echo "Installing: blender python3-numpy"
    as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq || true
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends blender python3-numpy \
        >/dev/null || echo "Blender could not be installed: the comparison with it will be skipped." >&2
fi

if [ "$1" = test ] && ! cmp -s tests/tools/package-lock.json tests/tools/node_modules/.lock-installed; then
    echo "Installing the checkers of written files (npm)"
    npm ci --prefix tests/tools --no-audit --no-fund --loglevel=error >/dev/null
    cp tests/tools/package-lock.json tests/tools/node_modules/.lock-installed
fi
