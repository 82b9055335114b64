#!/usr/bin/env bash
# Fails when a C++ file of the tree differs from the project's .clang-format,
# naming the files; `scripts/check-format.sh --fix` formats them instead.
set -euo pipefail
cd "$(dirname "$0")/.."
formatter=${CLANG_FORMAT:-clang-format}
if [ -d .git ] || git rev-parse --git-dir >/dev/null 2>&1; then
    mapfile -t files < <(git ls-files -co --exclude-standard -- '*.cpp' '*.h')
else
    mapfile -t files < <(find src tools tests bench fuzz -name '*.cpp' -o -name '*.h')
fi
existing=()
for f in "${files[@]}"; do [ -f "$f" ] && existing+=("$f"); done
if [ "${1:-}" = "--fix" ]; then
    printf '%s\0' "${existing[@]}" | xargs -0 "$formatter" -i
    exit 0
fi
bad=$(printf '%s\0' "${existing[@]}" | xargs -0 "$formatter" --dry-run 2>&1 | sed -n 's/^\([^:]*\):[0-9]*:[0-9]*: warning:.*/\1/p' | sort -u)
if [ -n "$bad" ]; then
    echo "check-format: these files differ from .clang-format (scripts/check-format.sh --fix formats them):" >&2
    echo "$bad" >&2
    exit 1
fi
echo "check-format: ${#existing[@]} files formatted"
