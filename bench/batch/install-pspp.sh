#!/usr/bin/env bash
# GNU PSPP for build/bench/batch/bench_batch only: the build and the tests do
# not need it, so it is not in scripts/install-deps.sh.
set -euo pipefail
command -v pspp >/dev/null && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends pspp
