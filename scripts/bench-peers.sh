#!/usr/bin/env bash
# Times whole plakard runs next to the tools store-listing makers compare it
# with: libvips (vips, vipsheader), sharp on Node and ImageMagick. Each job is
# one hyperfine run holding plakard and its peers, so their ratios are fair;
# every command also runs once under GNU time for its peak RSS and its minor
# page faults (first touches of fresh memory, a count the machine's load does
# not change).
#
#   scripts/bench-peers.sh [--peers-only] [--runs N] [--threads N] [--keep]
#                          [--baseline BINARY] [BUILD_DIR]
#
#   BUILD_DIR     where the plakard binary was built (default: build)
#   --peers-only  leave plakard out (also what happens, with a note, when the
#                 binary is missing or a plakard command fails)
#   --runs N      timed runs per command (default 10, at least 10 for the
#                 published table), after 2 warm-up runs
#   --threads N   cap the peers' worker threads (plakard has one); by default
#                 each peer uses its own default
#   --keep        keep the scratch folder (inputs, outputs, raw results)
#   --baseline BINARY  also time another plakard binary (an earlier build) in
#                 every job, as "baseline", for before/after figures from the
#                 same runs
#
# The benchmark tools come from Debian (installed here when missing, never
# added to scripts/install-deps.sh); sharp is installed with npm into the
# scratch folder, outside the project tree. The table goes to bench/results.md
# and to standard output.
# The job tables are read through namerefs, which shellcheck cannot follow.
# shellcheck disable=SC2034,SC1091,SC2178
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=build
runs=10
threads=
peers_only=0
baseline=
keep=0
while [ $# -gt 0 ]; do
  case "$1" in
    --peers-only) peers_only=1 ;;
    --runs) runs=$2; shift ;;
    --threads) threads=$2; shift ;;
    --keep) keep=1 ;;
    --baseline) baseline=$(realpath "$2"); shift ;;
    -h|--help) sed -n '2,27p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    -*) echo "bench-peers: unknown option $1" >&2; exit 2 ;;
    *) build_dir=$1 ;;
  esac
  shift
done
build_dir=$(cd "$root" && realpath -m "$build_dir")
plakard="$build_dir/plakard"

work=$(mktemp -d "${TMPDIR:-/tmp}/plakard-bench.XXXXXX")
if [ "$keep" -eq 1 ]; then
  echo "bench-peers: scratch folder $work is kept"
else
  trap 'rm -rf "$work"' EXIT
fi
mkdir -p "$work/out" "$work/results" "$work/rss"
notes=()
note() { notes+=("$1"); echo "bench-peers: $1" >&2; }

# ---------------------------------------------------------------- the tools
# Called by path: /usr/local/bin may hold a convert that is not ImageMagick.
magick=/usr/bin/convert
identify=/usr/bin/identify
gnu_time=/usr/bin/time
declare -A package_of=([$magick]=imagemagick [$identify]=imagemagick [vips]=libvips-tools
                       [vipsheader]=libvips-tools [hyperfine]=hyperfine [$gnu_time]=time
                       [node]=nodejs [npm]=npm)
missing=()
for tool in "${!package_of[@]}"; do
  command -v "$tool" >/dev/null 2>&1 || missing+=("${package_of[$tool]}")
done
if [ ${#missing[@]} -gt 0 ]; then
  mapfile -t missing < <(printf '%s\n' "${missing[@]}" | sort -u)
  echo "bench-peers: installing ${missing[*]}"
  sudo_if_needed() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
  sudo_if_needed apt-get update -qq
  sudo_if_needed env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
fi

echo "bench-peers: installing sharp into $work/node"
npm install --prefix "$work/node" --no-audit --no-fund --loglevel=error sharp >/dev/null
export NODE_PATH="$work/node/node_modules"

if [ -n "$threads" ]; then
  export VIPS_CONCURRENCY=$threads MAGICK_THREAD_LIMIT=$threads OMP_NUM_THREADS=$threads \
         BENCH_THREADS=$threads
fi

# ---------------------------------------------------------------- the inputs
capture="$root/samples/capture-1.png"
if [ ! -f "$capture" ]; then
  # A stand-in shaped like a real capture: flat panels, a few cards, text.
  capture="$work/capture-standin.png"
  note "samples/capture-1.png is missing; timed a 1179x2556 stand-in made with ImageMagick"
  cards=()
  for i in 0 1 2 3 4 5 6 7; do
    y=$((520 + i * 250))
    cards+=(-fill white -draw "roundrectangle 60,$y 1119,$((y + 220)) 36,36"
            -fill "#3478F6" -draw "circle 160,$((y + 110)) 160,$((y + 60))"
            -fill "#1C1C1E" -annotate "+250+$((y + 100))" "Subscription $((i + 1))"
            -fill "#8E8E93" -annotate "+250+$((y + 160))" "\$$((i * 3 + 4)).99 every month")
  done
  "$magick" -size 1179x2556 gradient:'#F2F2F7-#E5E5EA' \
    -fill '#3478F6' -draw 'rectangle 0,0 1178,420' \
    -font /usr/share/fonts/opentype/inter/Inter-Regular.otf -pointsize 52 \
    "${cards[@]}" \
    -fill white -pointsize 96 -annotate +60+330 'Subscriptions' \
    -alpha off PNG24:"$capture"
fi
capture_width=$(vipsheader -f width "$capture")
capture_height=$(vipsheader -f height "$capture")
capture_bands=$(vipsheader -f bands "$capture")

# A photo-heavy capture (a gallery app): a grid of photo-like tiles, ImageMagick's
# seeded plasma fractal with a fine grain, under a title bar and over a tab bar.
photos="$work/capture-photos.png"
gutters=()
for x in 390 783; do gutters+=(-draw "rectangle $x,260 $((x + 5)),2355"); done
for y in 650 1040 1430 1820 2210; do gutters+=(-draw "rectangle 0,$y 1178,$((y + 5))"); done
"$magick" -size 1179x2556 -seed 7 plasma:fractal -blur 0x1.5 -attenuate 0.3 +noise Gaussian \
  -fill white "${gutters[@]}" -draw 'rectangle 0,0 1178,260' \
  -fill '#1C1C1E' -font /usr/share/fonts/opentype/inter/Inter-Regular.otf -pointsize 64 -annotate +60+200 'Photos' \
  -fill '#F2F2F7' -draw 'rectangle 0,2356 1178,2555' -alpha off PNG24:"$photos"

# 100 captures for the probe job, as separate files like a real listing run.
mkdir -p "$work/probe"
for i in $(seq -w 1 100); do cp "$capture" "$work/probe/capture-$i.png"; done

page_width=1290
page_height=2796

# The hero page that plakard draws for this capture, in numbers the peers use.
# The headline block is measured from Inter Black: "TRACK" advances 3.631 em and
# "EVERY SUBSCRIPTION" 11.29 em, capitals with overshoot span about 0.75 em
# of ink whose top is 0.74 em above the baseline; ImageMagick places text
# by its ascent, 0.969 em.
geometry="$work/geometry.json"
awk -v W=$page_width -v H=$page_height -v cw="$capture_width" -v ch="$capture_height" '
  function round(v) { return v < 0 ? -int(-v + 0.5) : int(v + 0.5) }
  function min(a, b) { return a < b ? a : b }
  BEGIN {
    size1 = min(0.7 * W / 3.631, 0.19 * W); size2 = min(0.7 * W / 11.29, 0.095 * W)
    ink1 = 0.75 * size1; ink2 = 0.75 * size2; gap = 0.018 * W
    top = 0.075 * H
    base1 = top + 0.74 * size1; base2 = top + ink1 + gap + 0.74 * size2
    P = 0.8 * W; b = round(0.018 * P); s = round((P - 2 * b) * ch / cw); PH = 2 * b + s
    x = (W - P) * 0.5; y = round(top + ink1 + gap + ink2 + 0.045 * H); R = 0.13 * P
    k = round(0.035 * P * 1.2); n = 2 * k + 1; sigma = sqrt(3 * (n * n - 1) / 12)
    printf "{\"page\":{\"width\":%d,\"height\":%d},\"background\":\"#1F1F23\",\"foreground\":\"#FFFFFF\",\n", W, H
    printf " \"phone\":{\"x\":%d,\"y\":%d,\"w\":%d,\"h\":%d,\"radius\":%.4f,\"colour\":\"#101012\"},\n", x, y, P, PH, R
    printf " \"shadow\":{\"x\":%d,\"y\":%d,\"alpha\":110,\"sigma\":%.3f},\n", x, y + 2 * b, sigma
    printf " \"screen\":{\"x\":%d,\"y\":%d,\"w\":%d,\"h\":%d,\"radius\":%.4f},\n", x + b, y + b, P - 2 * b, s, R - b
    printf " \"pill\":{\"x\":%.4f,\"y\":%.4f,\"w\":%.4f,\"h\":%.4f},\n", x + 0.35 * P, y + b + 0.028 * P, 0.3 * P, 0.085 * P
    printf " \"font\":{\"family\":\"Inter\",\"weight\":900,\"file\":\"/usr/share/fonts/opentype/inter/Inter-Black.otf\",\"ascent\":0.969},\n"
    printf " \"lines\":[{\"text\":\"TRACK\",\"size\":%.3f,\"baseline\":%.3f},\n", size1, base1
    printf "          {\"text\":\"EVERY SUBSCRIPTION\",\"size\":%.3f,\"baseline\":%.3f}]}\n", size2, base2
  }' > "$geometry"
# Reads one number from the geometry, e.g. g phone.y
g() { node -e "const g=require(process.argv[1]); console.log(process.argv[2].split('.').reduce((o,k)=>o[k],g))" "$geometry" "$1"; }

# The cover crop plakard's resize takes: full width or height, centred
# horizontally, anchored at the top.
read -r crop_x crop_w crop_h < <(awk -v W="$capture_width" -v H="$capture_height" \
    -v w=$page_width -v h=$page_height '
  function round(v) { return int(v + 0.5) }
  BEGIN { cw = H * w / h; if (cw > W) cw = W; ch = W * h / w; if (ch > H) ch = H
          print round((W - cw) * 0.5), round(cw), round(ch) }')

# ---------------------------------------------------------------- the jobs
q() { printf '%q' "$1"; }
font=$(g font.file)
phone_x=$(g phone.x); phone_y=$(g phone.y); phone_w=$(g phone.w); phone_h=$(g phone.h)
radius=$(g phone.radius); shadow_y=$(g shadow.y); sigma=$(g shadow.sigma)
screen_x=$(g screen.x); screen_y=$(g screen.y); screen_w=$(g screen.w); screen_h=$(g screen.h)
screen_r=$(g screen.radius); pill_x=$(g pill.x); pill_y=$(g pill.y); pill_w=$(g pill.w); pill_h=$(g pill.h)
corner() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a + b - 1 }'; }
annotate_y() { awk -v base="$1" -v size="$2" -v ascent="$(g font.ascent)" \
    'BEGIN { printf "%.1f", base - ascent * size }'; }
# ImageMagick's roundrectangle takes inclusive corners and the corner radii.
magick_compose="$magick -size ${page_width}x${page_height} xc:'#1F1F23'
 \\( -size ${page_width}x${page_height} xc:none -fill 'rgba(0,0,0,$(awk 'BEGIN{printf "%.4f", 110/255}'))'
    -draw 'roundrectangle $phone_x,$shadow_y $(corner "$phone_x" "$phone_w"),$(corner "$shadow_y" "$phone_h") $radius,$radius'
    -blur 0x$sigma \\) -composite
 -fill '#101012' -draw 'roundrectangle $phone_x,$phone_y $(corner "$phone_x" "$phone_w"),$(corner "$phone_y" "$phone_h") $radius,$radius'
 \\( $(q "$capture") -alpha set -resize ${screen_w}x${screen_h}!
    \\( -size ${screen_w}x${screen_h} xc:none -fill white
       -draw 'roundrectangle 0,0 $((screen_w - 1)),$((screen_h - 1)) $screen_r,$screen_r' \\)
    -compose DstIn -composite \\) -compose Over -geometry +$screen_x+$screen_y -composite
 -fill black -draw 'roundrectangle $pill_x,$pill_y $(corner "$pill_x" "$pill_w"),$(corner "$pill_y" "$pill_h") $(awk -v h="$pill_h" 'BEGIN{print h/2}'),$(awk -v h="$pill_h" 'BEGIN{print h/2}')'
 -font $(q "$font") -fill white -gravity North
 -pointsize $(g lines.0.size) -annotate +0+$(annotate_y "$(g lines.0.baseline)" "$(g lines.0.size)") 'TRACK'
 -pointsize $(g lines.1.size) -annotate +0+$(annotate_y "$(g lines.1.baseline)" "$(g lines.1.size)") 'EVERY SUBSCRIPTION'
 -alpha off PNG24:$work/out/compose-imagemagick.png"
magick_compose=$(tr '\n' ' ' <<<"$magick_compose" | tr -s ' ')

size_arg="${page_width}x${page_height}"
# vips thumbnail's --crop low keeps the top rows; it would keep the left
# columns of a too-wide capture, but a 1179x2556 capture only overhangs below.
vips_resize() {  # INPUT OUTPUT_STEM
  if [ "$(vipsheader -f bands "$1")" -eq 4 ] || [ "$(vipsheader -f bands "$1")" -eq 2 ]; then
    echo "vips thumbnail $(q "$1") $2.v $page_width --height $page_height --size both --crop low && vips flatten $2.v $2.png"
  else
    echo "vips thumbnail $(q "$1") $2.png $page_width --height $page_height --size both --crop low"
  fi
}
# The resize job's commands for one input, into the arrays named TOOLS and CMDS.
resize_job() {  # JOB INPUT TOOLS CMDS
  local -n job_tools=$3 job_cmds=$4
  job_tools=(plakard "vips thumbnail" sharp imagemagick)
  job_cmds=(
    "$(q "$plakard") resize --in $(q "$2") --out $work/out/$1-plakard.png --size $size_arg"
    "$(vips_resize "$2" "$work/out/$1-vips")"
    "node $(q "$root/bench/peers/resize.js") $(q "$2") $work/out/$1-sharp.png $page_width $page_height"
    "$magick $(q "$2") -crop ${crop_w}x${crop_h}+${crop_x}+0 +repage -resize ${size_arg}! -alpha off PNG24:$work/out/$1-imagemagick.png")
}

jobs=(compose resize resize-photos probe)
declare -A job_title=(
  [compose]="compose a ${size_arg} hero page from one ${capture_width}x${capture_height} capture"
  [resize]="resize ${capture_width}x${capture_height} -> ${size_arg}, top-anchored cover, opaque PNG"
  [resize-photos]="the same resize of a photo-heavy ${capture_width}x${capture_height} capture (a gallery of plasma-fractal tiles, made with ImageMagick)"
  [probe]="probe 100 ${capture_width}x${capture_height} PNG captures in one run (plakard and identify %[mean] decode every image; vipsheader and identify read only the headers)")
# Per job: tool names and commands, in the order of the table.
compose_tools=(plakard sharp imagemagick)
compose_cmds=(
  "$(q "$plakard") compose --size $size_arg --bg '#1F1F23' --headline 'TRACK|EVERY SUBSCRIPTION' --screenshot $(q "$capture") --out $work/out/compose-plakard.png"
  "node $(q "$root/bench/peers/compose.js") $geometry $(q "$capture") $work/out/compose-sharp.png"
  "$magick_compose")
resize_job resize "$capture" resize_tools resize_cmds
resize_job resize-photos "$photos" resize_photos_tools resize_photos_cmds
# identify reads only the headers unless a format needs the pixels: %[mean]
# makes it decode every image in full, as plakard's probe does.
probe_tools=(plakard vipsheader identify "identify %[mean]")
probe_cmds=(
  "$(q "$plakard") probe $work/probe/*.png"
  "vipsheader $work/probe/*.png"
  "$identify $work/probe/*.png"
  "$identify -format '%wx%h %[mean]\\n' $work/probe/*.png")

# The baseline runs plakard's own commands, right after plakard in each job.
if [ -n "$baseline" ]; then
  for job in "${jobs[@]}"; do
    declare -n tools="${job//-/_}_tools" cmds="${job//-/_}_cmds"
    base_cmd=${cmds[0]//"$(q "$plakard")"/"$(q "$baseline")"}
    tools=(plakard baseline "${tools[@]:1}")
    cmds=("${cmds[0]}" "${base_cmd//-plakard.png/-baseline.png}" "${cmds[@]:1}")
    unset -n tools cmds
  done
fi

[ "$runs" -lt 10 ] && note "only $runs runs per command: a trial, not figures to publish"
if [ "$peers_only" -eq 1 ]; then
  note "plakard left out (--peers-only)"
elif [ ! -x "$plakard" ]; then
  note "no plakard binary at $plakard (build it first: make build); plakard left out"
  peers_only=1
fi

: > "$work/results/measures.tsv"
for job in "${jobs[@]}"; do
  declare -n tools="${job//-/_}_tools" cmds="${job//-/_}_cmds"
  echo
  echo "bench-peers: $job: ${job_title[$job]}"
  hyperfine_args=()
  for i in "${!tools[@]}"; do
    tool=${tools[$i]} cmd=${cmds[$i]}
    [ "$tool" = plakard ] && [ "$peers_only" -eq 1 ] && continue
    # One run under GNU time: it checks the command works and gives the peak RSS.
    stats="$work/rss/$job-${tool// /-}.txt"
    status=0
    "$gnu_time" -v -o "$stats" sh -c "$cmd" >"$stats.out" 2>"$stats.err" || status=$?
    if [ "$status" -ne 0 ]; then
      message=$(tr '\n' ' ' <"$stats.err" | cut -c1-200)
      note "$job: $tool failed with exit status $status (${message:-no message}); left out of the $job table"
      continue
    fi
    rss=$(awk -F': ' '/Maximum resident set size/ { print $2 }' "$stats")
    faults=$(awk -F': ' '/Minor \(reclaiming a frame\) page faults/ { print $2 }' "$stats")
    output="$work/out/$job-${tool%% *}.png"
    if [ "$job" = probe ]; then bytes=-; else bytes=$(stat -c %s "$output"); fi
    printf '%s\t%s\t%s\t%s\t%s\n' "$job" "$tool" "$rss" "$bytes" "$faults" >> "$work/results/measures.tsv"
    hyperfine_args+=(-n "$tool" "$cmd")
  done
  if [ ${#hyperfine_args[@]} -gt 0 ]; then
    hyperfine --style basic --warmup 2 --runs "$runs" \
      --export-json "$work/results/$job.json" "${hyperfine_args[@]}"
  fi
  unset -n tools cmds
done

# ---------------------------------------------------------------- the report
cache="$build_dir/CMakeCache.txt"
cache_value() { if [ -f "$cache" ]; then sed -n "s/^$1:[A-Z]*=//p" "$cache" | head -1; fi; }
compiler=$(cache_value CMAKE_CXX_COMPILER)
compiler_version=$("${compiler:-c++}" --version 2>/dev/null | head -1 || echo unknown)
build_type=$(cache_value CMAKE_BUILD_TYPE)
flags_file="$build_dir/CMakeFiles/plakard_lib.dir/flags.make"
if [ -f "$flags_file" ]; then
  build_flags=$(sed -n 's/^CXX_FLAGS = //p' "$flags_file")
elif [ -f "$cache" ]; then
  type_upper=$(tr '[:lower:]' '[:upper:]' <<<"$build_type")
  build_flags="$(cache_value CMAKE_CXX_FLAGS) $(cache_value "CMAKE_CXX_FLAGS_$type_upper")"
else
  build_flags="unknown (no build in $build_dir)"
fi
cpu=$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -1)
sharp_versions=$(node -e "const s=require('sharp'); console.log(s.versions.sharp + ' (libvips ' + s.versions.vips + ', concurrency ' + s.concurrency() + ')')")
thread_note="the default of each tool"
[ -n "$threads" ] && thread_note="capped at $threads (VIPS_CONCURRENCY, MAGICK_THREAD_LIMIT, sharp.concurrency)"

results="$root/bench/results.md"
{
  echo "### Whole runs next to the peers"
  echo
  echo "Median wall time of $runs runs after 2 warm-ups (hyperfine, one run per job with"
  echo "every tool in it); ratio = the tool's median / plakard's, so above 1 means plakard"
  echo "was faster; CPU is the mean user + system time. Peak RSS and minor page faults"
  echo "from one run under \`/usr/bin/time -v\`; output bytes of that run."
  echo
  for job in "${jobs[@]}"; do echo "- **$job**: ${job_title[$job]}"; done
  echo
  node "$root/bench/peers/report.js" "$work/results"
  echo
  echo "Machine and builds:"
  echo
  echo "- CPU: $cpu, $(getconf _NPROCESSORS_ONLN) logical cores online"
  echo "- Memory: $(awk '/MemTotal/ { printf "%.1f GiB", $2 / 1048576 }' /proc/meminfo); $(. /etc/os-release && echo "$PRETTY_NAME"), Linux $(uname -r)"
  echo "- plakard: ${build_type:-unknown} build, $compiler_version; flags: \`$(tr -s ' ' <<<"$build_flags" | sed 's/^ //;s/ $//')\`; one thread"
  echo "- sharp $sharp_versions, Node $(node --version)"
  echo "- $(vips --version), $("$magick" -version | head -1 | sed 's/^Version: //;s/ https.*//')"
  echo "- $(hyperfine --version); peer threads: $thread_note"
  echo "- Capture: $( [ "$capture" = "$root/samples/capture-1.png" ] && echo samples/capture-1.png || echo 'stand-in'), ${capture_width}x${capture_height}, $capture_bands bands, $(stat -c %s "$capture") bytes"
  echo "- Photo-heavy capture: 1179x2556, 3 bands, $(stat -c %s "$photos") bytes"
  if [ ${#notes[@]} -gt 0 ]; then
    echo
    echo "Notes:"
    echo
    for n in "${notes[@]}"; do echo "- $n"; done
  fi
  echo
  echo "Commands (from the project's root; the scratch folder shown as \$WORK):"
  echo
  echo '```'
  for job in "${jobs[@]}"; do
    declare -n tools="${job//-/_}_tools" cmds="${job//-/_}_cmds"
    for i in "${!tools[@]}"; do
      shown=${cmds[$i]//$work/\$WORK}
      printf '# %s / %s\n%s\n' "$job" "${tools[$i]}" "${shown//$root\//}"
    done
    unset -n tools cmds
  done
  echo '```'
} > "$results"
echo
cat "$results"
echo
echo "bench-peers: written to $results"
