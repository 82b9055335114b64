#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the viewer need,
# asking apt only for what is missing (no recommends). `--list` prints the
# list, one name a line, for scripts/check-deps.sh.
set -euo pipefail

# Real package names only: a virtual name is never "installed" and would
# send every run to apt.
packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-svg-dev qt6-qpa-plugins libgl1-mesa-dev
    qt6-translations-l10n libgif-dev libpng-dev
    zlib1g-dev libuemf-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev clang-format
    fonts-liberation fonts-dejavu-core
    poppler-utils
    xvfb xauth
    at-spi2-core python3-pyatspi dbus-daemon xdotool
    librsvg2-bin desktop-file-utils appstream shared-mime-info xdg-utils libfile-mimeinfo-perl
    man-db bash-completion dpkg-dev file lintian strace python3 git
    emf2svg libwmf-bin gsfonts
)

if [ "${1:-}" = "--list" ]; then
    printf '%s\n' "${packages[@]}"
    exit 0
fi

# One dpkg-query for the whole list; a package it does not know at all
# prints nothing and counts as missing too.
installed=$(dpkg-query -W -f='${Package} ${Status}\n' "${packages[@]}" 2>/dev/null \
    | awk '$NF == "installed" { print $1 }' || true)
missing=()
for p in "${packages[@]}"; do
    grep -qx "$p" <<<"$installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
