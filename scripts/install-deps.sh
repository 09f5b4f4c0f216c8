#!/usr/bin/env bash
# Installs the Debian 12 packages that Morvane builds, runs and tests with. Needs root; does nothing
# when everything is there already.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config git clang-format python3
    qt6-base-dev qt6-svg-dev qt6-qpa-plugins libgl-dev
    libavformat-dev libavcodec-dev libavfilter-dev libswscale-dev libswresample-dev libavutil-dev
    libmpv-dev ffmpeg
    libopencv-imgproc-dev # image effects: core and imgproc only
    googletest libgtest-dev libbenchmark-dev
    clang libclang-rt-14-dev llvm # the fuzz and ThreadSanitizer builds: libFuzzer, the runtimes, symbols
    ccache # a build dir made anew (a fresh clone) compiles only what changed since the last build
    dpkg-dev file desktop-file-utils appstream shared-mime-info groff-base man-db # the package and its checks
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
    echo "install-deps: these packages are missing; run as root to install them: ${missing[*]}" >&2
    exit 1
fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
