#!/usr/bin/env bash
# Builds everything with warnings as errors and runs all tests; arguments go to ctest.
set -euo pipefail
cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")"

tools/install-packages.sh
cmake --preset release -DFLUVANE_WARNINGS_AS_ERRORS=ON
cmake --build --preset release
ctest --preset release --parallel "$(nproc)" "$@"
