#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the tools need; runs `apt-get update`
# first when one is missing. With --cross, also the cross compilers and qemu-user of the ARM
# builds, and their sysroots in build/sysroot/ (scripts/make-sysroot.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

cross=0
if [[ ${1:-} == --cross ]]; then cross=1; fi

packages=(
    build-essential cmake pkg-config clang lld llvm libclang-rt-14-dev clang-format clang-tidy blueprint-tools
    hidl-gen android-libutils-dev android-liblog-dev android-libcutils-dev
    zlib1g-dev libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev
    libxcvt-dev u-boot-tools libubootenv-tool libubootenv-dev edid-decode lcov strace python3
    m4 checkpolicy setools policycoreutils libsepol-dev libc++-dev libc++abi-dev ninja-build
)
if ((cross)); then
    packages+=(g++-aarch64-linux-gnu g++-arm-linux-gnueabihf qemu-user)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if ((${#missing[@]})); then
    sudo_cmd=()
    if [[ $(id -u) -ne 0 ]]; then sudo_cmd=(sudo); fi
    echo "installing: ${missing[*]}"
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}"
fi

if ((cross)); then
    scripts/make-sysroot.sh arm64 build/sysroot/arm64
    scripts/make-sysroot.sh armhf build/sysroot/armhf
fi
