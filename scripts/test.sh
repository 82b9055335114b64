#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test:
#  1. the full build (viewer, tools, tests, benchmarks) with gcc, all tests;
#  2. a clang build with AddressSanitizer + UndefinedBehaviorSanitizer, the
#     reader's fuzz target for a bounded time, seeded with documents of
#     every revision, the rich-text and user-block settings readers' targets,
#     then the engine's tests again under the sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
echo "== install list complete?"
scripts/check-deps.sh

jobs=$(nproc)
fuzz_seconds=${KEL_FUZZ_SECONDS:-60}
export QT_QPA_PLATFORM=offscreen

echo "== build (gcc)"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKEL_WERROR=ON >/dev/null
cmake --build build -j"$jobs"
echo "== tests (gcc)"
ctest --test-dir build --output-on-failure -j"$jobs"

echo "== build (clang, ASan + UBSan, fuzz targets)"
cmake -S . -B build-san -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DKEL_SANITIZE=ON -DKEL_FUZZ=ON -DKEL_WERROR=ON -DKEL_BUILD_GUI=OFF -DKEL_BUILD_BENCH=OFF >/dev/null
cmake --build build-san -j"$jobs"
echo "== fuzzing the reader for ${fuzz_seconds}s"
corpus=build-san/fuzz-corpus
rm -rf "$corpus" && mkdir -p "$corpus"
for rev in 1 2 3 4 5 6 7 8 9; do
    for form in "" --plain; do
        seed="$corpus/rev$rev${form/--/-}.kel"
        build/tools/kelwriter/kelwrite demo --revision "$rev" $form --rows 12 --seed "$rev" "$seed"
        # The fuzzer's last byte holds flags: 1 = repair length and checksum.
        cp "$seed" "$seed.repair" && printf '\001' >>"$seed.repair"
        printf '\000' >>"$seed"
    done
done
# Inputs that once failed start the corpus too.
cp fuzz/crashers/*.bin "$corpus"/
build-san/fuzz/fuzz_reader -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -max_len=65536 \
    -dict=fuzz/kel.dict -artifact_prefix=build-san/ -print_final_stats=1 "$corpus" 2>&1 | tail -n 15
echo "== fuzzing the rich-text reader for 20s"
mkdir -p build-san/fuzz-rtf-corpus
printf '%s' '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\b bold\b0 \u8364?\par x}' >build-san/fuzz-rtf-corpus/seed.rtf
build-san/fuzz/fuzz_rtf -max_total_time=20 -rss_limit_mb=2048 -max_len=16384 -artifact_prefix=build-san/rtf- \
    -print_final_stats=1 build-san/fuzz-rtf-corpus 2>&1 | tail -n 5
echo "== fuzzing the user-block settings reader for 20s"
mkdir -p build-san/fuzz-userblocks-corpus
# The body of the settings file's [Documents] section, then the flag byte
# (1 = the store may be repaired).
key='%7B00000000-0000-0000-0000-000000000000%7D\Block%20'
printf '%s\n' "${key}Items=dword:00000003" "${key}002\\Name=Theme" \
    "${key}002\\Included%20Data%20Headers=1|2" "${key}002\\Include%20In%20Copy=dword:00000001" \
    >build-san/fuzz-userblocks-corpus/seed.ini
printf '\001' >>build-san/fuzz-userblocks-corpus/seed.ini
build-san/fuzz/fuzz_userblocks -max_total_time=20 -rss_limit_mb=2048 -timeout=10 -max_len=4096 \
    -dict=fuzz/userblocks.dict -artifact_prefix=build-san/userblocks- -print_final_stats=1 \
    build-san/fuzz-userblocks-corpus 2>&1 | tail -n 5
echo "== tests (ASan + UBSan)"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-san --output-on-failure -j"$jobs"

