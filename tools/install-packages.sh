#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the tour need; with --tools also what the
# mesh-making companions use. Does nothing when all are there.
set -euo pipefail

packages=(
    g++              # compiler, with the OpenMP runtime libgomp1
    cmake            # configures the build
    ninja-build      # runs it
    qtbase5-dev      # Qt 5: Core, Gui, Widgets, Concurrent, Test
    libgtest-dev     # GoogleTest, for the tests without windows
    libbenchmark-dev # Google Benchmark, for bench/
    python3          # the companions under tools/ and their tests
    python3-numpy      # fluvane-view
    python3-matplotlib # its pictures
    python3-meshio     # its tests read its files back
    python3-vtk9       # the same
    xvfb             # a display for the tour where there is none
    xauth            # xvfb-run needs it
    fonts-liberation # a stand-in for Times New Roman
    fonts-wqy-zenhei # Chinese characters in the help and version texts
)
companions=(
    gmsh             # makes and converts meshes
    python3-gmsh     # the same from Python
)
if [[ "${1:-}" == "--tools" ]]; then
    packages+=("${companions[@]}")
fi

if ! command -v dpkg-query >/dev/null; then
    echo "No Debian packages on this system; going on with what is installed. Needed, by their Debian names:"
    echo "  ${packages[*]}"
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    if [[ "$status" != "installed" ]]; then
        missing+=("$package")
    fi
done
if [[ ${#missing[@]} -eq 0 ]]; then
    exit 0
fi

as_root=()
if [[ $EUID -ne 0 ]]; then
    if ! command -v sudo >/dev/null || ! { sudo -n true 2>/dev/null || [[ -t 0 ]]; }; then
        echo "These packages are missing; please run as root, then try again:" >&2
        echo "  apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}"
