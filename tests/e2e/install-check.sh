#!/usr/bin/env bash
# The program as a user gets it: installed into a temporary DESTDIR and run
# from there (compose finds Inter Black beside the binary through the PATH link,
# so no fallback warning; the usage text; an error), the manual page rendered
# without warnings, completion answering, and the listing example run (which
# ends with `plakard check` of its pages).
set -euo pipefail
# A failed check would otherwise end the run without a word.
trap 'echo "install-check: failed at line $LINENO: $BASH_COMMAND" >&2' ERR
cd "$(dirname "$0")/../.."
build=${1:-build}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
DESTDIR=$tmp/root cmake --install "$build" --prefix /opt/plakard >/dev/null
prefix=$tmp/root/opt/plakard
bin=$prefix/bin/plakard
test -L "$bin"

"$bin" compose --bg '#1F1F23' --headline 'INSTALLED|AND FOUND' --screenshot samples/capture-1.png \
  --size 645x1398 --out "$tmp/page.png" >"$tmp/out" 2>"$tmp/err"
test ! -s "$tmp/err"
test "$(cat "$tmp/out")" = "$tmp/page.png"
test "$("$bin" probe "$tmp/page.png")" = 645x1398
"$bin" help | cmp - <("$build/plakard" help)
status=0; "$bin" frobnicate 2>"$tmp/err" || status=$?
test $status = 1
grep -qx "plakard: unknown command 'frobnicate'; try \`plakard help\`" "$tmp/err"

test -z "$(groff -ww -z -man "$prefix/share/man/man1/plakard.1" 2>&1)"

complete_words() {
  bash -c 'source /usr/share/bash-completion/bash_completion; source "$0"
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMP_LINE="$*"; COMP_POINT=${#COMP_LINE}
    _plakard; echo "${COMPREPLY[*]}"' "$prefix/share/bash-completion/completions/plakard" "$@"
}
test "$(complete_words plakard res)" = resize
test "$(complete_words plakard compose --layout '')" = "hero device-top"
test "$(complete_words plakard resize --f)" = --fit
test "$(complete_words plakard check --store '')" = "app-store play"

make -s -C examples/listing -j "$(nproc)" PLAKARD="$bin" OUT="$tmp/listing" >/dev/null 2>"$tmp/err"
test ! -s "$tmp/err"
test "$(find "$tmp/listing" -name '*.png' | wc -l)" = 28
echo "install-check: installed program, manual page, completion and listing all fine"
