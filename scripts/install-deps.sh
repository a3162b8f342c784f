#!/usr/bin/env bash
# Installs everything plakard needs to build, test and benchmark, from Debian's
# packages only. Safe to run again: it installs only what is missing.
#
#   scripts/install-deps.sh [--fuzz] [--package] [BUILD_DIR]
#
# --fuzz adds what `make fuzz` needs: clang with libFuzzer and the sanitizer
# runtimes, and fontTools for the font seeds fuzz/seed.sh makes from Debian's
# faces. --package adds what `make deb` and the install check need: dpkg-dev
# (dpkg-shlibdeps), fakeroot, lintian, groff for the manual page, and
# bash-completion. Plain builds and tests do without them.
#
# stb_image_resize2.h first shipped in Debian 13. When the system's libstb-dev
# lacks it, Debian 13's libstb-dev is fetched with a private apt configuration
# under BUILD_DIR/deps (the system's apt setup is never touched) and unpacked
# there; its headers are then used for every stb library, so all of them come
# from one release.
set -euo pipefail

fuzz=false
package=false
while [ $# -gt 0 ]; do
  case $1 in
    --fuzz) fuzz=true ;;
    --package) package=true ;;
    *) break ;;
  esac
  shift
done
build_dir=${1:-build}
# The fonts after the libraries are test faces only: an em of 1000, a kern
# table that pairs letters with the space, a face without Latin letters, a
# font collection, and a Devanagari face for shaped lines. strace watches the
# write's system calls in one test.
packages=(g++ cmake make pkg-config libstb-dev libicu-dev libgtest-dev
          libbenchmark-dev fonts-inter fonts-dejavu-core libdeflate-dev
          liblcms2-dev libharfbuzz-dev
          fonts-noto-mono fonts-liberation fonts-opensymbol fonts-wqy-microhei
          fonts-lohit-deva strace)
if $fuzz; then
  packages+=(clang-14 libclang-rt-14-dev python3-fonttools)
fi
if $package; then
  packages+=(dpkg-dev fakeroot lintian groff-base man-db bash-completion)
fi

sudo_if_needed() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  sudo_if_needed apt-get update -qq
  sudo_if_needed env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
fi

deps="$build_dir/deps"
mkdir -p "$deps"
if [ -f /usr/include/stb/stb_image_resize2.h ]; then
  stb_dir=/usr/include/stb
else
  stb_dir="$(cd "$deps" && pwd)/stb13/usr/include/stb"
  if [ ! -f "$stb_dir/stb_image_resize2.h" ]; then
    echo "install-deps: fetching Debian 13 libstb-dev for stb_image_resize2.h"
    apt_root="$(cd "$deps" && pwd)/apt13"
    rm -rf "$apt_root"
    mkdir -p "$apt_root/etc/preferences.d" "$apt_root/state/lists/partial" \
             "$apt_root/cache/archives/partial" "$apt_root/download"
    echo 'deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian trixie main' \
      > "$apt_root/etc/sources.list"
    : > "$apt_root/status"
    apt_opts=(-o "Dir::Etc::SourceList=$apt_root/etc/sources.list"
              -o "Dir::Etc::SourceParts=/nonexistent"
              -o "Dir::Etc::Preferences=/nonexistent"
              -o "Dir::Etc::PreferencesParts=$apt_root/etc/preferences.d"
              -o "Dir::State=$apt_root/state"
              -o "Dir::State::status=$apt_root/status"
              -o "Dir::Cache=$apt_root/cache"
              -o "APT::Sandbox::User=root"
              -o "Debug::NoLocking=1")
    apt-get "${apt_opts[@]}" -qq update
    (cd "$apt_root/download" && apt-get "${apt_opts[@]}" -qq download libstb-dev)
    rm -rf "$deps/stb13"
    dpkg -x "$apt_root"/download/libstb-dev_*.deb "$deps/stb13"
    test -f "$stb_dir/stb_image_resize2.h"
  fi
fi
echo "$stb_dir" > "$deps/stb-include-dir"
echo "install-deps: stb headers in $stb_dir"
