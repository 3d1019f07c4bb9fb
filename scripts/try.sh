#!/usr/bin/env bash
# From a bare machine to a solved model: installs what the build needs, builds the library and the program, and solves
# the models given (default: one of examples/).
# Usage: scripts/try.sh [tovik arguments]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install_packages.sh build
cmake --preset release -DTOVIK_BUILD_TESTS=OFF > /dev/null
cmake --build --preset release
if [ $# -eq 0 ]; then set -- examples/production.lp; fi
exec build/release/tovik "$@"
