#!/usr/bin/env bash
# Installs what is missing, builds the viewer and opens it on the bundled
# sample survey (Swedish sample under a Swedish locale).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target kelviewer
sample=samples/employee-survey-en.kel
case "${LC_ALL:-${LC_MESSAGES:-${LANG:-}}}" in sv*) sample=samples/employee-survey-sv.kel ;; esac
exec build/src/viewer/kelviewer "$sample" "$@"
