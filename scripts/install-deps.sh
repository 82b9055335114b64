#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the viewer need,
# asking apt only for what is missing.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-svg-dev qt6-qpa-plugins libgl1-mesa-dev
    qt6-translations-l10n libgif-dev
    zlib1g-dev libuemf-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev
    fonts-liberation
    xvfb xauth
    emf2svg libwmf-bin gsfonts
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
