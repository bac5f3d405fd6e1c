#!/usr/bin/env bash
# Makes the pictures of docs/images anew: takes the guided tour through every sample case of the user guide and
# draws the last result of each with tools/fluvane-view. Build first: cmake --preset release, then
# cmake --build --preset release --target fluvane_tour.
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.."
tour=$PWD/build/release/tools/tour/fluvane_tour
images=$PWD/docs/images
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT

if [[ ! -x "$tour" ]]; then
    echo "The tour is not built: cmake --preset release && cmake --build --preset release --target fluvane_tour" >&2
    exit 1
fi

take_tour() { # CASE
    echo "$1"
    xvfb-run -a -s "-screen 0 1280x1024x24" "$tour" --case "$1" cases "$work/$1" >"$work/$1.log" 2>&1 || {
        cat "$work/$1.log" >&2
        exit 1
    }
}

keep() { # CASE PICTURE-WITHOUT-NUMBER NAME
    local found=("$work/$1"/[0-9][0-9]-"$2".png)
    cp -- "${found[0]}" "$images/$3.png"
}

newest() { # CASE: the result that the run wrote last
    local file latest=""
    for file in "$work/$1/results/$1"_*.dat; do
        [[ -n "$latest" && ! "$file" -nt "$latest" ]] || latest=$file
    done
    printf '%s\n' "$latest"
}

mkdir -p "$images"
for name in cavity annulus heated-cavity channel melting-cavity cavity-3d; do
    take_tour "$name"
done

keep cavity main-done main-window
keep cavity main-mesh main-mesh
keep cavity dimension dimension
keep cavity lattice lattice
keep cavity physics-filled physics-cavity
keep cavity boundary-lid boundary-cavity
keep cavity run-control run-control
keep annulus physics-filled physics-annulus
keep annulus boundary-inner boundary-annulus
keep heated-cavity physics-filled physics-heated-cavity
keep heated-cavity boundary-left boundary-heated-cavity
keep channel boundary-outlet boundary-channel
keep melting-cavity physics-again physics-melting-cavity
keep melting-cavity phase-change phase-change
keep melting-cavity boundary-left boundary-melting-cavity
keep melting-cavity run-control run-control-transient
keep cavity-3d boundary-lid boundary-cavity-3d

if [[ ! -x tools/fluvane-view ]]; then
    echo "tools/fluvane-view is not there: the field pictures stay as they are" >&2
    exit 0
fi

draw() { # CASE OPTION...
    local name=$1
    shift
    tools/fluvane-view picture "$(newest "$name")" "$@" --levels 20 --dpi 64 -o "$work/field.png" >/dev/null
    # A palette makes the file a third as large; Pillow comes with matplotlib.
    /usr/bin/python3 -c 'import sys; from PIL import Image
Image.open(sys.argv[1]).convert("RGB").quantize(64, dither=Image.Dither.NONE).save(sys.argv[2], optimize=True)' \
        "$work/field.png" "$images/field-$name.png"
}

draw cavity --show speed --streamlines
draw annulus --show T --isolines T
draw heated-cavity --show T --streamlines
draw channel --show u
draw melting-cavity --show fl --front --streamlines
draw cavity-3d --slice y=5 --show speed --streamlines
