#!/usr/bin/env bash
# A long campaign for one target, measured in CPU time rather than wall time,
# so that targets sharing a machine (or a machine that is busy) each get the
# same amount of fuzzing. The target runs until its processes have used
# CPU_SECONDS of CPU, and is started again, with the corpus it has grown,
# after every crash, leak or timeout; each finding stays in
# BUILD_DIR/fuzz-artifacts/<target>/ and each run's output in
# BUILD_DIR/fuzz-logs/<target>.<round>.log.
#
#   fuzz/campaign.sh BUILD_DIR TARGET [CPU_SECONDS]      (default 1800)
#
# Run one per core, e.g. two targets at once on two cores; see fuzz/README.md.
set -euo pipefail

build=$1
target=$2
limit=${3:-1800}
here=$(cd "$(dirname "$0")" && pwd)
source "$here/setup.sh"

"$here/seed.sh" "$build/fuzz-seeds" >/dev/null
fuzz_setup "$build" "$target"

ticks=$(getconf CLK_TCK)
used=0
round=0
while [ "$used" -lt "$limit" ]; do
  round=$((round + 1))
  log="$build/fuzz-logs/$target.$round.log"
  "$build/fuzz/$target" "${options[@]}" "${inputs[@]}" >"$log" 2>&1 &
  pid=$!
  spent=0
  while kill -0 "$pid" 2>/dev/null; do
    sleep 5
    # utime + stime of the fuzzing process, in clock ticks
    now=$(awk '{ print $14 + $15 }' "/proc/$pid/stat" 2>/dev/null) || continue
    spent=$((now / ticks))
    [ $((used + spent)) -lt "$limit" ] || kill -INT "$pid" 2>/dev/null || true
  done
  status=0
  wait "$pid" || status=$?
  used=$((used + spent))
  echo "$target round $round: status $status, ${used}s of CPU"
done
# Each round's last status line, "#EXECS ... cov: N ft: N corp: N/...": the
# executions add up, the coverage is the last round's.
execs=0
last=
for r in $(seq 1 "$round"); do
  line=$(sed -nE 's/^#([0-9]+).*cov: ([0-9]+) ft: ([0-9]+) corp: ([0-9]+).*/\1 \2 \3 \4/p' "$build/fuzz-logs/$target.$r.log" | tail -n 1)
  [ -n "$line" ] || continue
  execs=$((execs + ${line%% *}))
  last=$line
done
read -r _ cov features entries <<<"${last:-0 0 0 0}"
echo "$target: ${used}s of CPU in $round rounds, $execs execs, cov $cov, ft $features," \
  "corpus $entries, $(find "$artifacts" -type f | wc -l) artifacts"
