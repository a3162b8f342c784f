#!/usr/bin/env bash
# Builds the Debian package from an already built tree:
#
#   packaging/deb.sh BUILD_DIR [OUT_DIR]
#
# The tree is installed with prefix /usr into BUILD_DIR/deb/debian/plakard, the face
# beside the binary becomes a link to fonts-inter's file (so the package does
# not carry a second copy of it), and Depends is what dpkg-shlibdeps finds in
# the binary plus fonts-inter. Prints the path of the .deb it wrote.
set -euo pipefail
build=$(cd "${1:?usage: packaging/deb.sh BUILD_DIR [OUT_DIR]}" && pwd)
out=$(mkdir -p "${2:-$build}" && cd "${2:-$build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
umask 022

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
arch=$(dpkg --print-architecture)
# dpkg-shlibdeps expects the staged package at debian/PACKAGE beside a
# debian/control that names it.
work=$build/deb
root=$work/debian/plakard
rm -rf "$work"
mkdir -p "$root/DEBIAN"
printf 'Source: plakard\n\nPackage: plakard\nArchitecture: any\n' > "$work/debian/control"
DESTDIR=$root PLAKARD_FACE_LINK=../../share/fonts/opentype/inter/Inter-Black.otf \
  cmake --install "$build" --prefix /usr --strip >/dev/null
# As dh_strip does: the compiler's .comment and .note sections are not needed.
strip --remove-section=.comment --remove-section=.note "$root/usr/lib/plakard/plakard"
gzip -9n "$root/usr/share/man/man1/plakard.1"
doc=$root/usr/share/doc/plakard
mkdir -p "$doc"
cp "$here/copyright" "$doc/copyright"
gzip -9nc "$here/changelog" > "$doc/changelog.gz"

shlibs=$(cd "$work" && dpkg-shlibdeps -O debian/plakard/usr/lib/plakard/plakard | sed -n 's/^shlibs:Depends=//p')
(cd "$root" && find usr -type f -exec md5sum {} + | sort -k2) > "$work/md5sums"

cat > "$root/DEBIAN/control" <<CONTROL
Package: plakard
Version: $version
Architecture: $arch
Maintainer: plakard developers <plakard@example.org>
Installed-Size: $(du -sk --exclude=DEBIAN "$root" | cut -f1)
Depends: $shlibs, fonts-inter
Recommends: fonts-noto-core, fonts-noto-cjk
Section: graphics
Priority: optional
Description: compose and size App Store screenshots
 plakard draws the pictures of a store listing from raw screen captures:
 a page at an exact upload size with a brand colour, a large headline in
 Inter Black and the capture inside a drawn phone. It also brings PNG and
 JPEG images to an exact size without alpha and reports image sizes.
CONTROL
mv "$work/md5sums" "$root/DEBIAN/md5sums"

deb=$out/plakard_${version}_${arch}.deb
dpkg-deb --root-owner-group -Zxz --build "$root" "$deb" >/dev/null
echo "$deb"
