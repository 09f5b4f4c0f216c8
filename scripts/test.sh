#!/usr/bin/env bash
# Builds Morvane and runs every test: the format check, the suite in a release build, the suite again
# under AddressSanitizer and UndefinedBehaviorSanitizer, the engine and controller suites under
# ThreadSanitizer, and a short run of every fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

echo "== format check"
mapfile -t sources < <(find app automation bench catalogue conversion core crypto desktop edit filelist mainwindow platform playback tests -name '*.cpp' -o -name '*.h' | sort)
clang-format --dry-run --Werror "${sources[@]}"

jobs=$(nproc)

echo "== release build and tests"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build/release -j "$jobs"
ctest --test-dir build/release --output-on-failure -j "$jobs" --timeout 300

echo "== package"
# The Debian package from the release build; as root it is installed, run from /usr/bin and removed.
bash tests/app/package_test.sh build/release

echo "== sanitizer build and tests"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=ON
cmake --build build/asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 LSAN_OPTIONS="suppressions=$PWD/tests/asan/lsan_suppressions.txt" \
    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build/asan --output-on-failure -j "$jobs" --timeout 600

echo "== thread sanitizer build and tests (engine, controller and effects)"
# Clang; only the suites that run the encoder's worker threads, and the effects with their per-thread
# caches. The peak memory test measures the sanitizer's own shadow memory here, so it stays with the
# other two builds.
CC=clang CXX=clang++ cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMORVANE_TSAN=ON \
    -DMORVANE_BENCHMARKS=OFF
cmake --build build/tsan -j "$jobs" --target media_encoder_tests media_conformance_tests conversion_job_tests \
    effect_chain_tests
TSAN_OPTIONS="second_deadlock_stack=1 suppressions=$PWD/tests/tsan/suppressions.txt" \
    ctest --test-dir build/tsan -R '^(media_encoder_tests|media_conformance_tests|conversion_job_tests|effect_chain_tests)\.' \
    -E 'PeakMemoryDoesNotGrowWithTheInputsLength' --output-on-failure -j "$jobs" --timeout 600

echo "== preset sweep (one per group)"
bash tools/preset_sweep.sh build/release/app/morvane-cli --one-per-group

echo "== fuzzing"
bash scripts/fuzz.sh 30
