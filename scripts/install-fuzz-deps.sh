#!/usr/bin/env bash
# Installs what `make fuzz` needs on top of scripts/install-deps.sh, from
# Debian's packages only: clang with libFuzzer and the sanitizer runtimes, and
# fontTools for the font seeds that fuzz/seed.sh makes from Debian's faces.
# Safe to run again: it installs only what is missing.
set -euo pipefail

packages=(clang-14 libclang-rt-14-dev python3-fonttools)

sudo_if_needed() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "install-fuzz-deps: installing ${missing[*]}"
  sudo_if_needed apt-get update -qq
  sudo_if_needed env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
