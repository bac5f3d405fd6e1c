#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the tour need; with --tools also what the
# mesh-making companions use, with --ci what the further checks of every submission use. Does nothing when all
# are there.
set -euo pipefail

packages=(
    g++              # compiler, with the OpenMP runtime libgomp1
    cmake            # configures the build
    ninja-build      # runs it
    qtbase5-dev      # Qt 5: Core, Gui, Widgets, Concurrent, Test
    libgtest-dev     # GoogleTest, for the tests without windows
    libbenchmark-dev # Google Benchmark, for bench/
    python3          # the companions under tools/ and their tests
    python3-numpy    # fluvane-mesh and fluvane-view: large files in little time
    python3-meshio   # fluvane-mesh: reads most formats; reads fluvane-view's files back in its tests
    python3-gmsh     # fluvane-mesh: reads Gmsh's format, makes free triangles
    python3-matplotlib # fluvane-view: pictures
    python3-vtk9     # the tests of fluvane-view read its files back
    dpkg-dev         # dpkg-shlibdeps: what the package depends on
    file             # tells it which of its files are programs
    groff            # checks the manual pages
    desktop-file-utils # checks the menu entry
    appstream        # checks its description
    mandoc           # checks the manual pages
    xvfb             # a display for the tour where there is none
    xauth            # xvfb-run needs it
    fonts-liberation # a stand-in for Times New Roman
    fonts-wqy-zenhei # Chinese characters in the help and version texts
)
companions=(
    gmsh             # makes and converts meshes
)
checks=(
    clang               # compiles the fuzz targets and what the thread sanitizer looks at
    libclang-rt-14-dev  # the fuzzer and its sanitizers
    libomp-dev          # that compiler's OpenMP runtime, which tells the sanitizer of its barriers
    clang-tidy          # static analysis
    cppcheck            # more of it
)
case "${1:-}" in
--tools) packages+=("${companions[@]}") ;;
--ci) packages+=("${checks[@]}") ;;
esac

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
