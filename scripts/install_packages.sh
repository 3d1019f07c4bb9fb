#!/usr/bin/env bash
# Installs the Debian packages that are not there yet. Groups: `build` (library and program), `test` (all checks).
# Usage: scripts/install_packages.sh build|test
set -euo pipefail

build=(g++ cmake ninja-build libexpat1-dev zlib1g-dev libbz2-dev libopenblas-serial-dev libmetis-dev libsuitesparse-dev
  libcli11-dev nlohmann-json3-dev)
test=("${build[@]}" bzip2 gzip xz-utils zstd git python3 ccache libgtest-dev clang-format-14 pkg-config binutils locales)

case "${1:-}" in
  build) wanted=("${build[@]}") ;;
  test) wanted=("${test[@]}") ;;
  *) echo "usage: $0 build|test" >&2; exit 2 ;;
esac

missing=()
for package in "${wanted[@]}"; do
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" < /dev/null
