#!/usr/bin/env bash
# make-sysroot.sh ARCH DIR: a sysroot for the cross builds, made from Debian's own ARM packages.
#
# The packages are fetched with `apt-get download` through a private apt state (their indexes
# are read for ARCH alone, nothing of the machine's own apt state or package database changes)
# and unpacked with `dpkg-deb -x`. Installing them as a foreign architecture would change the
# machine, and fails whenever the registry's indexes of the two architectures are out of step.
# ARCH is a Debian architecture (arm64, armhf). Nothing is done when DIR is already complete.
set -euo pipefail

arch=${1:?usage: make-sysroot.sh ARCH DIR}
sysroot=$(realpath -m "${2:?usage: make-sysroot.sh ARCH DIR}")

# What the project links, with their libraries and what those load in turn (libbacktrace has a
# NEEDED entry for p7zip's 7z.so).
packages=(
    android-libutils-dev android-libutils android-liblog-dev android-liblog
    android-libcutils-dev android-libcutils android-libbacktrace android-libbase
    libbsd0 libmd0 p7zip-full
    zlib1g-dev zlib1g libgtest-dev libgmock-dev libxcvt-dev libxcvt0
    nlohmann-json3-dev libcli11-dev
)

stamp="$sysroot/.complete"
if [[ -f $stamp && $(cat "$stamp") == "${packages[*]}" ]]; then
    exit 0
fi

state="$sysroot.apt"
rm -rf "$sysroot" "$state"
mkdir -p "$state/lists/partial" "$state/cache/archives/partial" "$state/debs" "$sysroot"
touch "$state/status"
apt_options=(
    -o "APT::Architecture=$arch" -o "APT::Architectures::=$arch"
    -o "Dir::State=$state" -o "Dir::State::Lists=$state/lists" -o "Dir::State::status=$state/status"
    -o "Dir::Cache=$state/cache" -o "Debug::NoLocking=1"
)
# As root, apt would hand the downloads to its _apt user, which may not write here.
if [[ $(id -u) -eq 0 ]]; then apt_options+=(-o "APT::Sandbox::User=root"); fi
echo "sysroot $arch: reading the package indexes"
# A mirror caught in the middle of a sync serves an index of the wrong size for a while: try
# again, and in the end go on with the indexes that did arrive (a package none of them names
# stops the download below with apt's own message).
for attempt in 1 2 3; do
    if apt-get "${apt_options[@]}" update -qq; then break; fi
    echo "sysroot $arch: some package indexes did not arrive (attempt $attempt of 3)" >&2
    sleep $((attempt * 5))
done
echo "sysroot $arch: fetching ${#packages[@]} packages"
(cd "$state/debs" && apt-get "${apt_options[@]}" download -qq "${packages[@]/%/:$arch}")
for deb in "$state/debs"/*.deb; do
    dpkg-deb -x "$deb" "$sysroot"
done

# Links that name an absolute path (libz.so -> /lib/...) would leave the sysroot: make them
# relative to where they stand.
while IFS= read -r -d '' link; do
    target=$(readlink "$link")
    if [[ $target == /* ]]; then
        ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$sysroot$target")" "$link"
    fi
done < <(find "$sysroot" -type l -print0)

rm -rf "$state"
echo "${packages[*]}" >"$stamp"
echo "sysroot $arch: $(find "$sysroot" -type f | wc -l) files in $sysroot"
