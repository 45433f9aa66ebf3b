#!/bin/sh
# Builds the `bench` preset and runs every benchmark program of bench/ (each bench/<name>.cpp is
# the executable <name>), then prints one summary table: the lines in which each program compares
# itself with its peer (those holding "ours/"; a program without such lines shows its timing
# rows), under the program's name, with the machine's core count. Wall times on a shared machine are noisy: run it twice, or compare instruction
# counts under callgrind, before trusting a small difference.
#
# Usage: bench/run.sh [extra Google Benchmark flags, e.g. --benchmark_min_time=0.5]
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/bench"
jobs=${VX_BENCH_JOBS:-2}

cmake --preset bench -S "$root" >/dev/null
cmake --build "$build" -j "$jobs" >/dev/null

summary=$(mktemp)
trap 'rm -f "$summary"' EXIT

for src in "$root"/bench/*.cpp; do
    name=$(basename "$src" .cpp)
    exe=$(find "$build" -type f -name "$name" -perm -u+x | head -n 1)
    if [ -z "$exe" ]; then
        printf '%s: not built (missing peer library?)\n\n' "$name" >>"$summary"
        continue
    fi
    echo "== $name" >&2
    out=$("$exe" --benchmark_color=false "$@" 2>/dev/null) || {
        printf '%s: failed (exit %s)\n\n' "$name" "$?" >>"$summary"
        continue
    }
    printf '%s\n' "$out" >&2
    {
        echo "$name"
        lines=$(printf '%s\n' "$out" | grep -i 'ours/' || true)
        if [ -z "$lines" ]; then
            # No comparison of its own: its timing rows instead.
            lines=$(printf '%s\n' "$out" | grep -E ' (ns|us|ms|s) +[0-9.]+ (ns|us|ms|s) ' || true)
        fi
        printf '%s\n' "$lines" | sed 's/^/  /'
        echo
    } >>"$summary"
done

# The vx tool against cs2cs on a million points, when both are there.
echo "== convert_vs_cs2cs" >&2
if conv=$("$root/bench/convert_vs_cs2cs.sh" "$build/tools/vx/vx" 2>&1); then
    printf '%s\n' "$conv" >&2
    printf 'convert_vs_cs2cs\n%s\n\n' "$(printf '%s\n' "$conv" | sed 's/^/  /')" >>"$summary"
else
    printf 'convert_vs_cs2cs: not run (%s)\n\n' "$conv" >>"$summary"
fi

echo
echo "Summary ($(nproc) cores, $(uname -m); ratios above 1 mean ours is faster unless a line says otherwise)"
echo
cat "$summary"
