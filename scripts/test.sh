#!/usr/bin/env bash
# Installs what building and testing need, builds the release configuration and runs every test.
# Usage: scripts/test.sh [ctest arguments]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install_packages.sh test
cmake --preset release -DTOVIK_BUILD_TESTS=ON > /dev/null
cmake --build --preset release
exec ctest --preset release -j "$(nproc)" "$@"
