#!/usr/bin/env bash
# Builds Morvane and runs every test: the format check, the suite in a release build, and the suite
# again under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

echo "== format check"
mapfile -t sources < <(find app bench catalogue conversion core crypto desktop filelist platform tests -name '*.cpp' -o -name '*.h' | sort)
clang-format --dry-run --Werror "${sources[@]}"

jobs=$(nproc)

echo "== release build and tests"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build/release -j "$jobs"
ctest --test-dir build/release --output-on-failure -j "$jobs" --timeout 300

echo "== sanitizer build and tests"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=ON
cmake --build build/asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build/asan --output-on-failure -j "$jobs" --timeout 600

echo "== preset sweep (one per group)"
bash tools/preset_sweep.sh build/release/app/morvane-cli --one-per-group
