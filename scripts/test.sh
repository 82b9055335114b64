#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test:
#  1. the full build (viewer, tools, tests, benchmarks) with gcc, all tests,
#     every program they start recorded;
#  2. a clang build with AddressSanitizer + UndefinedBehaviorSanitizer, the
#     fuzz targets for a bounded time (the reader's seeded with documents
#     of every revision, the rich-text and user-block settings readers'),
#     then the tests again under the sanitizers;
#  3. the install list checked against what configuring read and against
#     every program the build, the tests and the package build started.
# A failing stage does not stop the others (a packaging failure must not
# hide a sanitizer failure); all failures are listed at the end, and the
# script exits non-zero if there was any.
set -uo pipefail
cd "$(dirname "$0")/.."

jobs=$(nproc)
fuzz_seconds=${KEL_FUZZ_SECONDS:-60}
export QT_QPA_PLATFORM=offscreen

passed=()
failed=()
skipped=()
# stage NAME COMMAND...: runs one stage and remembers how it ended.
stage()
{
    local name=$1
    shift
    echo "== $name"
    if "$@"; then
        passed+=("$name")
        return 0
    fi
    echo "== $name: FAILED" >&2
    failed+=("$name")
    return 1
}
skip() { echo "== $1: skipped ($2)"; skipped+=("$1 ($2)"); }

summary()
{
    echo
    echo "== summary"
    local s
    for s in "${passed[@]}"; do echo "   passed   $s"; done
    for s in "${skipped[@]}"; do echo "   skipped  $s"; done
    for s in "${failed[@]}"; do echo "   FAILED   $s"; done
    echo "stages: ${#passed[@]} passed, ${#failed[@]} failed"
}

# Without the packages nothing below can run.
if ! stage "install dependencies" scripts/install-deps.sh; then
    summary
    exit 1
fi

# Every program the gcc stages start (compilers, CPack's helpers, the tools
# the tests call) is recorded, so that the install list can be checked
# against what really ran, not only against what configuring read.
mkdir -p build
exec_log=$PWD/build/programs-started.log
: >"$exec_log"
if strace -f -qq --seccomp-bpf -e trace=execve -o /dev/null true 2>/dev/null; then
    traced() { strace -f -qq --seccomp-bpf -e trace=execve -e signal=none -s 256 -o "$exec_log.$1" "${@:2}"; }
else
    echo "test.sh: strace cannot trace here; the programs the tests start go unchecked" >&2
    traced() { "${@:2}"; }
    rm -f "$exec_log"
fi

configure_gcc() { cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKEL_WERROR=ON >/dev/null; }
if stage "configure (gcc)" configure_gcc && stage "build (gcc)" traced build cmake --build build -j"$jobs"; then
    stage "tests (gcc)" traced tests ctest --test-dir build --output-on-failure -j"$jobs"
else
    skip "tests (gcc)" "the build failed"
fi
if [ -f "$exec_log" ]; then
    cat "$exec_log".* >"$exec_log" 2>/dev/null
    rm -f "$exec_log".*
fi

configure_san()
{
    cmake -S . -B build-san -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DKEL_SANITIZE=ON -DKEL_FUZZ=ON -DKEL_WERROR=ON -DKEL_BUILD_GUI=OFF -DKEL_BUILD_BENCH=OFF >/dev/null
}

fuzz_reader()
{
    local corpus=build-san/fuzz-corpus rev form seed
    [ -x build/tools/kelwriter/kelwrite ] || { echo "the gcc build's kelwrite makes the seeds; it is missing" >&2; return 1; }
    rm -rf "$corpus" && mkdir -p "$corpus"
    for rev in 1 2 3 4 5 6 7 8 9; do
        for form in "" --plain; do
            seed="$corpus/rev$rev${form/--/-}.kel"
            build/tools/kelwriter/kelwrite demo --revision "$rev" $form --rows 12 --seed "$rev" "$seed" || return 1
            # The fuzzer's last byte holds flags: 1 = repair length and checksum.
            cp "$seed" "$seed.repair" && printf '\001' >>"$seed.repair"
            printf '\000' >>"$seed"
        done
    done
    # Inputs that once failed start the corpus too.
    cp fuzz/crashers/*.bin "$corpus"/
    build-san/fuzz/fuzz_reader -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -max_len=65536 \
        -dict=fuzz/kel.dict -artifact_prefix=build-san/ -print_final_stats=1 "$corpus" >build-san/fuzz-reader.log 2>&1
    local status=$?
    tail -n 15 build-san/fuzz-reader.log
    return $status
}

fuzz_rtf()
{
    mkdir -p build-san/fuzz-rtf-corpus
    printf '%s' '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\b bold\b0 \u8364?\par x}' >build-san/fuzz-rtf-corpus/seed.rtf
    build-san/fuzz/fuzz_rtf -max_total_time=20 -rss_limit_mb=2048 -max_len=16384 -artifact_prefix=build-san/rtf- \
        -print_final_stats=1 build-san/fuzz-rtf-corpus >build-san/fuzz-rtf.log 2>&1
    local status=$?
    tail -n 5 build-san/fuzz-rtf.log
    return $status
}

fuzz_userblocks()
{
    local corpus=build-san/fuzz-userblocks-corpus
    mkdir -p "$corpus"
    # The body of the settings file's [Documents] section, then the flag byte
    # (1 = the store may be repaired).
    local key='%7B00000000-0000-0000-0000-000000000000%7D\Block%20'
    printf '%s\n' "${key}Items=dword:00000003" "${key}002\\Name=Theme" \
        "${key}002\\Included%20Data%20Headers=1|2" "${key}002\\Include%20In%20Copy=dword:00000001" \
        >"$corpus/seed.ini"
    printf '\001' >>"$corpus/seed.ini"
    build-san/fuzz/fuzz_userblocks -max_total_time=20 -rss_limit_mb=2048 -timeout=10 -max_len=4096 \
        -dict=fuzz/userblocks.dict -artifact_prefix=build-san/userblocks- -print_final_stats=1 \
        "$corpus" >build-san/fuzz-userblocks.log 2>&1
    local status=$?
    tail -n 5 build-san/fuzz-userblocks.log
    return $status
}

tests_san()
{
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        ctest --test-dir build-san --output-on-failure -j"$jobs"
}

if stage "configure (clang, ASan + UBSan, fuzz targets)" configure_san \
    && stage "build (clang, ASan + UBSan)" cmake --build build-san -j"$jobs"; then
    stage "fuzzing the reader for ${fuzz_seconds}s" fuzz_reader
    stage "fuzzing the rich-text reader for 20s" fuzz_rtf
    stage "fuzzing the user-block settings reader for 20s" fuzz_userblocks
    stage "tests (ASan + UBSan)" tests_san
else
    skip "fuzzing" "the sanitizer build failed"
    skip "tests (ASan + UBSan)" "the sanitizer build failed"
fi

if [ -f "$exec_log" ]; then
    stage "install list complete" scripts/check-deps.sh --programs "$exec_log"
else
    stage "install list complete (configure only)" scripts/check-deps.sh
fi

summary
[ ${#failed[@]} -eq 0 ]
