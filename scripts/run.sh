#!/usr/bin/env bash
# Builds Morvane and starts it; arguments are passed to the program.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build/release -j "$(nproc)" --target morvane
exec build/release/app/morvane "$@"
