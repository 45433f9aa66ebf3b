#!/bin/sh
# vx convert against cs2cs (proj-bin) on the same projections and the same 1,000,000 points, each
# timed in one run from file to file: UTM zone 31 on GRS 1980, and the plain Dutch RD projection
# (an oblique stereographic on Bessel 1841). Prints both wall times and the ratio cs2cs/ours;
# above 1 means vx is faster. Wall times on a shared machine are noisy: run it twice.
#
# Usage: bench/convert_vs_cs2cs.sh [PATH_TO_VX] [POINTS]
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
vx=${1:-}
points=${2:-1000000}
if [ -z "$vx" ]; then
    for candidate in "$root/build/bench/tools/vx/vx" "$root/build/default/tools/vx/vx"; do
        if [ -x "$candidate" ]; then vx=$candidate; break; fi
    done
fi
[ -n "$vx" ] && [ -x "$vx" ] || { echo "convert_vs_cs2cs: no vx tool built (give its path)" >&2; exit 2; }
command -v cs2cs >/dev/null || { echo "convert_vs_cs2cs: cs2cs missing (apt-get install proj-bin)" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Points over the Netherlands, latitude longitude height, a fixed pseudo-random sequence.
awk -v n="$points" 'BEGIN { srand(1); for (i = 0; i < n; i++)
    printf "%.7f %.7f %.2f\n", 50.8 + 2.7 * rand(), 3.4 + 3.8 * rand(), 100 * rand() }' >"$work/in.txt"

now() { date +%s.%N; }

# time_run NAME COMMAND... : runs it with in.txt as input, prints the seconds it took.
time_run() {
    start=$(now)
    "$@" <"$work/in.txt" >"$work/out.txt"
    end=$(now)
    awk -v a="$start" -v b="$end" 'BEGIN { printf "%.3f", b - a }'
}

compare() {
    name=$1 vx_args=$2 proj_args=$3
    # shellcheck disable=SC2086
    ours=$(time_run "$vx" convert $vx_args 2>/dev/null)
    lines_ours=$(wc -l <"$work/out.txt")
    # shellcheck disable=SC2086
    theirs=$(time_run cs2cs -r -f %.4f $proj_args)
    lines_theirs=$(wc -l <"$work/out.txt")
    [ "$lines_ours" -eq "$points" ] && [ "$lines_theirs" -eq "$points" ] ||
        { echo "convert_vs_cs2cs: $name: $lines_ours / $lines_theirs lines out of $points" >&2; exit 1; }
    awk -v n="$name" -v o="$ours" -v t="$theirs" -v p="$points" 'BEGIN {
        printf "convert %-8s %d points: vx %.3f s, cs2cs %.3f s, cs2cs/ours %.2f\n", n, p, o, t, t / o }'
}

compare "UTM 31" "--to UTM_NORTH --zone 31 --ellipsoid GRS_1980" \
    "+proj=longlat +ellps=GRS80 +to +proj=utm +zone=31 +ellps=GRS80"
compare "RD" "--to RD" \
    "+proj=longlat +ellps=bessel +to +proj=sterea +lat_0=52.15616055555555 +lon_0=5.38763888888889 +k=0.9999079 +x_0=155000 +y_0=463000 +ellps=bessel"
