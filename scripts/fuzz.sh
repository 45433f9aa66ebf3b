#!/bin/sh
# Builds the libFuzzer targets (preset "fuzz", clang) and runs each for SECONDS (default 60),
# with leak checking on, a memory limit per input, and in fork mode, so that a run does not stop
# at the first out-of-memory of one input. Prints the executions of each target; exits non-zero
# on any finding (the reproducer is left in build/fuzz/artifacts/).
#
#   scripts/fuzz.sh [SECONDS] [TARGET...]     (default: every target in fuzz/)
#
# Each target starts from its seed corpus in fuzz/corpus/<target>/ and adds what it finds to
# build/fuzz/corpus/<target>/, so the seeds in the source tree stay as they are.
set -eu

SECONDS_EACH=${1:-60}
[ $# -gt 0 ] && shift
RSS_LIMIT_MB=256
TIMEOUT_S=10
JOBS=1

cd "$(dirname "$0")/.."
scripts/deps.sh fuzz
# Under a lock, so that two runs started side by side do not build in one tree at once.
mkdir -p build
flock build/.fuzz-build.lock sh -c 'cmake --preset fuzz >/dev/null && cmake --build build/fuzz -j2 >/dev/null'


if [ $# -eq 0 ]; then
    set -- $(for f in fuzz/fuzz_*.cpp; do basename "$f" .cpp; done)
fi

mkdir -p build/fuzz/artifacts build/fuzz/logs
status=0
for name in "$@"; do
    work=build/fuzz/corpus/$name
    log=build/fuzz/logs/$name.log
    mkdir -p "$work"
    # GNU time, where installed, reports the peak memory of the driver and its workers.
    timer=""
    [ -x /usr/bin/time ] && timer="/usr/bin/time -f peak_rss_kb=%M"
    if ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        $timer "build/fuzz/fuzz/$name" -fork="$JOBS" -max_total_time="$SECONDS_EACH" \
        -rss_limit_mb="$RSS_LIMIT_MB" -malloc_limit_mb="$RSS_LIMIT_MB" -timeout="$TIMEOUT_S" \
        -detect_leaks=1 -artifact_prefix="build/fuzz/artifacts/$name-" \
        "$work" "fuzz/corpus/$name" >"$log" 2>&1; then
        result=ok
    else
        result=FINDING
        status=1
    fi
    # The last status line of the fork-mode driver: "#<executions>: cov: ... time: ...".
    execs=$(grep -E '^#[0-9]+' "$log" | tail -n 1 | sed -E 's/^#([0-9]+).*/\1/')
    peak=$(grep -E '^peak_rss_kb=' "$log" | tail -n 1 | sed -E 's/^peak_rss_kb=([0-9]+)/\1/')
    echo "$name: ${execs:-0} executions in ${SECONDS_EACH}s, peak ${peak:-?} kB: $result" \
        "(log: $log)"
done
exit $status
