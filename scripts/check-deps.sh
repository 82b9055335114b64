#!/usr/bin/env bash
# Proves the install list complete: every file under /usr that configuring
# the project reads (the CMake modules and package configs and everything
# they include) and the compilers and build tool it runs must come from a
# package that scripts/install-deps.sh pulls in without recommends, or from
# one every Debian system has (Essential or Priority required). A file that
# only got onto this machine some other way would be missing on a bare one.
# The clang of the sanitizer build is checked as a program; its configure
# reads no package config that the gcc one does not.
set -euo pipefail
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -S . -B "$work/build" -G Ninja --trace-expand --trace-format=json-v1 \
    --trace-redirect="$work/trace.json" -DKEL_WERROR=ON >"$work/configure.log" 2>&1 || {
    echo "check-deps: configuring failed:" >&2
    tail -n 20 "$work/configure.log" >&2
    exit 1
}

# The files the traced commands came from, and the programs the build runs.
python3 - "$work" >"$work/files" <<'PY'
import json, os, re, shutil, sys
work = sys.argv[1]
files = set()
with open(os.path.join(work, "trace.json")) as f:
    for line in f:
        try:
            entry = json.loads(line)
        except ValueError:
            continue
        if "file" in entry:
            files.add(entry["file"])
with open(os.path.join(work, "build", "CMakeCache.txt")) as f:
    for line in f:
        m = re.match(r"CMAKE_(?:CXX_COMPILER|MAKE_PROGRAM):FILEPATH=(/\S+)$", line.strip())
        if m:
            files.add(m.group(1))
for program in ("clang", "clang++"):
    found = shutil.which(program)
    files.add(found if found else "/usr/bin/" + program)
for path in sorted(files):
    if not path.startswith("/usr/"):
        continue
    if not os.path.exists(path):
        print(path)  # reported below as belonging to no package
    elif not os.path.isdir(path):
        print(os.path.realpath(path))
PY
sort -u -o "$work/files" "$work/files"

# Which package owns each file. Merged /usr: dpkg may know a file under
# /lib rather than /usr/lib, so the other spelling is tried too.
xargs -d '\n' dpkg -S <"$work/files" 2>/dev/null | sed 's/: \//\t\//' >"$work/owned" || true
cut -f2 "$work/owned" | tr -d ' ' | sort -u >"$work/owned-files"
: >"$work/unowned"
while read -r path; do
    grep -qxF "$path" "$work/owned-files" && continue
    alt=${path#/usr}
    if owner=$(dpkg -S "$alt" 2>/dev/null | head -n 1); then
        printf '%s\t%s\n' "${owner%%: *}" "$path" >>"$work/owned"
    else
        echo "$path" >>"$work/unowned"
    fi
done <"$work/files"

# The closure of the install list, as apt resolves it without recommends.
mapfile -t packages < <(scripts/install-deps.sh --list)
apt-cache depends --recurse --installed --no-recommends --no-suggests --no-conflicts --no-breaks \
    --no-replaces --no-enhances "${packages[@]}" 2>/dev/null | grep -v '^ ' | tr -d '<>' | sed 's/:.*$//' \
    >"$work/closure"
dpkg-query -W -f='${Package} ${Essential} ${Priority}\n' | awk '$2 == "yes" || $3 == "required" { print $1 }' \
    >>"$work/closure"
sort -u -o "$work/closure" "$work/closure"

status=0
# A file may belong to several packages (diversions, shared folders): one
# of them inside the closure is enough.
while IFS=$'\t' read -r owners path; do
    ok=0
    for p in ${owners//,/ }; do
        grep -qxF "${p%%:*}" "$work/closure" && ok=1 && break
    done
    if [ $ok -eq 0 ]; then
        echo "check-deps: $path comes from $owners, which the install list does not pull in" >&2
        status=1
    fi
done < <(sort -u "$work/owned")
while read -r path; do
    echo "check-deps: $path belongs to no package" >&2
    status=1
done <"$work/unowned"

count=$(wc -l <"$work/files")
if [ $status -eq 0 ]; then
    echo "check-deps: the $count files under /usr that configuring reads all come from the install list"
fi
exit $status
