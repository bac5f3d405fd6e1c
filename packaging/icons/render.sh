#!/usr/bin/env bash
# Draws the PNG icons anew from the two SVG drawings beside it; needs rsvg-convert (Debian: librsvg2-bin).
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")"

name=org.fluvane.Fluvane
for size in 16 22 24 32 48 64 128 256 512; do
    drawing=$name.svg
    if ((size <= 32)); then
        drawing=$name-small.svg
    fi
    mkdir -p "${size}x$size"
    rsvg-convert --width "$size" --height "$size" --output "${size}x$size/$name.png" "$drawing"
done
