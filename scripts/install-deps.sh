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
# stb_image_resize2.h first shipped in Debian 13, and every build uses one
# pinned version of Debian 13's libstb-dev: the system's when it is exactly
# that version, else the package fetched with a private apt configuration
# under BUILD_DIR/deps (the system's apt setup is never touched), checked
# against its SHA-256 and unpacked there. Its headers are then used for every
# stb library, so all of them come from one release.
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
# font collection, and a Devanagari face for shaped lines; Noto's faces are
# what --lang finds for scripts the headline face lacks. strace watches the
# write's system calls in one test.
packages=(g++ cmake make pkg-config libstb-dev libicu-dev libgtest-dev
          libbenchmark-dev fonts-inter fonts-dejavu-core libdeflate-dev
          liblcms2-dev libharfbuzz-dev libfontconfig-dev fontconfig
          fonts-noto-mono fonts-liberation fonts-opensymbol fonts-wqy-microhei
          fonts-lohit-deva strace fonts-noto-core fonts-noto-cjk)
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

# The one stb every build uses: the font-table checks in src/type/
# (FontTables.cpp, CompactFontTables.cpp) mirror exactly what this
# stb_truetype reads, so a new version is taken only after checking it against
# them. The headers are the same on every architecture; the amd64 package is
# the one pinned.
stb_version='0.0~git20241109.5c20573+ds-1'
stb_sha256='36fbe0c268c76daa655180ea3c9933afc41c6449ec5e53ef3d4907b516147650'
stb_mismatch() {
  echo "install-deps: $1 Debian 13's libstb-dev $stb_version (SHA-256 $stb_sha256)." >&2
  echo "install-deps: check the new stb_truetype against the font-table checks in src/type/," \
       "then update stb_version and stb_sha256 in scripts/install-deps.sh." >&2
  exit 1
}

deps="$build_dir/deps"
mkdir -p "$deps"
if [ "$(dpkg-query -W -f='${Version}' libstb-dev 2>/dev/null)" = "$stb_version" ]; then
  stb_dir=/usr/include/stb
else
  stb13="$(cd "$deps" && pwd)/stb13"
  stb_dir="$stb13/usr/include/stb"
  if [ "$(cat "$stb13/version" 2>/dev/null)" != "$stb_version" ]; then
    echo "install-deps: fetching Debian 13 libstb-dev $stb_version"
    apt_root="$(cd "$deps" && pwd)/apt13"
    rm -rf "$apt_root"
    mkdir -p "$apt_root/etc/preferences.d" "$apt_root/state/lists/partial" \
             "$apt_root/cache/archives/partial" "$apt_root/download"
    echo 'deb [arch=amd64 signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian trixie main' \
      > "$apt_root/etc/sources.list"
    : > "$apt_root/status"
    apt_opts=(-o "Dir::Etc::SourceList=$apt_root/etc/sources.list"
              -o "Dir::Etc::SourceParts=/nonexistent"
              -o "Dir::Etc::Preferences=/nonexistent"
              -o "Dir::Etc::PreferencesParts=$apt_root/etc/preferences.d"
              -o "Dir::State=$apt_root/state"
              -o "Dir::State::status=$apt_root/status"
              -o "Dir::Cache=$apt_root/cache"
              -o "APT::Architectures::=amd64"
              -o "APT::Sandbox::User=root"
              -o "Debug::NoLocking=1")
    apt-get "${apt_opts[@]}" -qq update
    (cd "$apt_root/download" && apt-get "${apt_opts[@]}" -qq download "libstb-dev:amd64=$stb_version") ||
      stb_mismatch "the mirror no longer offers"
    deb=("$apt_root"/download/libstb-dev_*.deb)
    echo "$stb_sha256  ${deb[0]}" | sha256sum --check --status || stb_mismatch "the download does not match"
    rm -rf "$stb13"
    dpkg -x "${deb[0]}" "$stb13"
    test -f "$stb_dir/stb_image_resize2.h"
    echo "$stb_version" > "$stb13/version"
  fi
fi
echo "$stb_dir" > "$deps/stb-include-dir"
echo "install-deps: stb headers in $stb_dir"
