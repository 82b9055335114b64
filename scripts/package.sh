#!/usr/bin/env bash
# Installs what is missing, builds a release and makes the Debian package
# (build-package/kelviewer_VERSION_ARCH.deb); install it with
#   sudo apt install ./build-package/kelviewer_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build-package -G Ninja -DCMAKE_BUILD_TYPE=Release -DKEL_WERROR=ON \
    -DKEL_BUILD_TESTS=OFF -DKEL_BUILD_BENCH=OFF >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack -G DEB)
ls build-package/kelviewer_*.deb
