#!/usr/bin/env bash
# Builds the program and opens it in the folder of the sample cases. Without a display it takes a guided tour
# through the program on an invisible one and leaves pictures of every window in tour/; "--case annulus" and the
# like take another case than the plane cavity, see cases/.
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")"
root=$PWD

tools/install-packages.sh
cmake --preset release
cmake --build --preset release --target fluvane fluvane_tour

if [[ -n "${DISPLAY:-}" ]]; then
    cd cases
    exec "$root/build/release/src/fluvane" "$@"
fi
echo "No display: taking the guided tour."
if [[ -d tour && ! -L tour ]]; then
    touch tour/.made-by-the-tour # this folder is the tour's, whatever it holds
fi
exec xvfb-run -a -s "-screen 0 1280x1024x24" \
    "$root/build/release/tools/tour/fluvane_tour" "$@" "$root/cases" "$root/tour"
