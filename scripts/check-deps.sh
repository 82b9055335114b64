#!/usr/bin/env bash
# Proves the install list complete: every file under /usr that configuring
# the project reads (the CMake modules and package configs and everything
# they include), the compilers and build tool it runs, and, given
# `--programs LOG` (an strace execve log, as scripts/test.sh records it),
# every program the build, the tests and the package build started must come
# from a package that scripts/install-deps.sh pulls in without recommends, or
# from one every Debian system has (Essential or Priority required). A file
# that only got onto this machine some other way would be missing on a bare
# one. Programs of the build tree itself are ours and not checked.
set -euo pipefail
programs_log=""
if [ "${1:-}" = "--programs" ]; then
    programs_log=$(realpath "${2:?--programs needs the log file}")
    [ -f "$programs_log" ] || { echo "check-deps: no such log: $programs_log" >&2; exit 1; }
fi
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
python3 - "$work" "$programs_log" >"$work/files" <<'PY'
import json, os, re, shutil, sys
work = sys.argv[1]
programs_log = sys.argv[2]
files = set()
programs = set()
if programs_log:
    # execve("/usr/bin/file", ...: a search along PATH tries paths that do
    # not exist; only the ones that do were started.
    started = re.compile(r'execve\("([^"]+)"')
    with open(programs_log, errors="replace") as f:
        for line in f:
            m = started.search(line)
            if m and os.path.isfile(m.group(1)):
                path = os.path.realpath(m.group(1))
                if path.startswith("/usr/"):
                    programs.add(path)
    files |= programs
with open(os.path.join(work, "programs-count"), "w") as f:
    f.write(str(len(programs)))
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
    if [ -n "$programs_log" ]; then
        echo "check-deps: the $count files under /usr that configuring reads and the $(cat "$work/programs-count")" \
            "programs the build, tests and packaging started all come from the install list"
    else
        echo "check-deps: the $count files under /usr that configuring reads all come from the install list"
    fi
fi
exit $status
