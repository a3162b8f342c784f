# Sourced by run.sh and campaign.sh: where a target's corpus, seeds, crash
# files and findings live, and the libFuzzer options every run of it uses.
#
#   fuzz_setup BUILD_DIR TARGET    sets corpus, artifacts, inputs and options
fuzz_setup() {
  local build=$1 target=$2 here crashers dir
  here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
  crashers="$(cd "$here/.." && pwd)/tests/data/crashers"
  corpus="$build/fuzz-corpus/$target"
  artifacts="$build/fuzz-artifacts/$target"
  mkdir -p "$corpus" "$artifacts" "$build/fuzz-logs"
  # New entries go to the first folder; the others are only read.
  inputs=("$corpus")
  for dir in "$here/corpus/$target" "$build/fuzz-seeds/$target" "$crashers/$target"; do
    if [ -d "$dir" ]; then inputs+=("$dir"); fi
  done
  options=(-timeout=10 -rss_limit_mb=4096 -artifact_prefix="$artifacts/" -print_final_stats=1)
  if [ -f "$here/$target.dict" ]; then options+=(-dict="$here/$target.dict"); fi
}
