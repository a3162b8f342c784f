#!/usr/bin/env bash
# Replays every fuzz target's corpus and the committed crash files, then fuzzs
# each target for a while under ASan + UBSan. Any crash, hang, leak or
# sanitizer report fails the run; libFuzzer writes the input it found into
# BUILD_DIR/fuzz-artifacts/<target>/.
#
#   fuzz/run.sh BUILD_DIR [SECONDS_PER_TARGET] [TARGET...]
#
# New corpus entries gather in BUILD_DIR/fuzz-corpus/<target>; the committed
# corpus in fuzz/corpus/<target> is only read. A long campaign is the same
# script with more seconds and KEEP_GOING=1, which runs one fork at a time and
# goes on past crashes, collecting every artifact:
#
#   KEEP_GOING=1 fuzz/run.sh build-fuzz 1800     (half an hour per target)
#
# The seconds are wall-clock time and the targets run one after another, so
# that is 30 CPU minutes per target only on a core nothing else uses; see
# fuzz/README.md for the last campaign's figures.
#
# Each target's output is kept in BUILD_DIR/fuzz-logs/<target>.log, and the
# run ends with one line per target: executions, coverage (edges), features
# and corpus entries at its end.
set -euo pipefail

build=$1
seconds=${2:-30}
shift $(( $# > 1 ? 2 : 1 ))
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_image fuzz_font fuzz_options fuzz_compose)
here=$(cd "$(dirname "$0")" && pwd)
source "$here/setup.sh"

"$here/seed.sh" "$build/fuzz-seeds" >/dev/null
summary=()
for target in "${targets[@]}"; do
  binary="$build/fuzz/$target"
  fuzz_setup "$build" "$target"

  echo "== $target: replaying ${inputs[*]:1}"
  "$binary" "${options[@]}" -runs=0 "${inputs[@]:1}"
  echo "== $target: fuzzing for ${seconds}s"
  log="$build/fuzz-logs/$target.log"
  if [ -n "${KEEP_GOING:-}" ]; then
    "$binary" "${options[@]}" -max_total_time="$seconds" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 \
      -ignore_ooms=1 "${inputs[@]}" 2>&1 | tee "$log"
  else
    "$binary" "${options[@]}" -max_total_time="$seconds" "${inputs[@]}" 2>&1 | tee "$log"
  fi
  # libFuzzer's last status line, "#EXECS ... cov: N ft: N corp: N/...", in
  # both the plain and the fork mode.
  summary+=("$(sed -nE 's/^#([0-9]+):?[[:space:]].*cov: ([0-9]+) ft: ([0-9]+) corp: ([0-9]+).*/\1 \2 \3 \4/p' "$log" | tail -n 1 |
    awk -v t="$target" '{ printf "%-14s %12s execs  cov %6s  ft %7s  corpus %6s", t, $1, $2, $3, $4 }')")
  if [ -n "${KEEP_GOING:-}" ]; then
    summary[-1]+="  artifacts $(find "$artifacts" -type f | wc -l)"
  fi
done
echo "== summary, ${seconds}s per target"
printf '%s\n' "${summary[@]}"
