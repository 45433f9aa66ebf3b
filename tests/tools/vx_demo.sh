#!/bin/bash
# vx demo end to end: the synthetic project clipped, converted and saved, checked against values
# worked out by hand, and a run whose output cannot be written.
# Usage: vx_demo.sh PATH_TO_VX SOURCE_DATA_DIR
set -u
VX=$1
DATA=$2
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

"$VX" demo "$DIR/out" >"$DIR/summary" 2>"$DIR/err" || fail "demo exit $?: $(cat "$DIR/err")"
grep -q "5 parcels (5 arcs) -> 4 pieces inside (5 arcs)" "$DIR/summary" ||
    fail "clip counts: $(cat "$DIR/summary")"

# The area inside, by hand: three whole parcels of 40 x 30 less a corner of 8 x 8 rounded by a
# quarter circle (1200 - 64 + 16 pi each), less the two strips west of the boundary arc (centre
# (80, 35) local, radius 75: 2400 - [F(u)] with F(u) = u/2 sqrt(r^2 - u^2) + r^2/2 asin(u/r),
# 248.383641 each), plus the 25 x 30 west part of the fourth parcel: 3812.029165 m2. The library
# measures arcs by chords within 0.0005 m, which loses at most about 0.04 m2 over these arcs.
area=$(sed -n 's/^  area .* -> \([0-9.]*\) m2$/\1/p' "$DIR/summary")
awk -v a="$area" 'BEGIN { d = a - 3812.029165; exit !(d > -0.05 && d <= 0.005) }' ||
    fail "area inside $area, wanted 3812.029 less at most 0.05"

for f in pieces.xml pieces.vxb pieces_etrs89.txt report.txt demo.svg grids/X2c.grd; do
    [ -s "$DIR/out/$f" ] || fail "no $f"
done
# Both archives hold the same pieces with their arcs: five circular strings.
for f in pieces.xml pieces.vxb; do
    n=$("$VX" export "$DIR/out/$f" --to wkt | grep -o CIRCULARSTRING | wc -l)
    [ "$n" -eq 5 ] || fail "$f: $n arcs, wanted 5"
done
grep -q "parcel 5: outside the boundary, left out" "$DIR/out/report.txt" || fail "report"
# 28 vertices (8 + 8 + 7 + 5) in ETRS89 near Amersfoort (52.155 N, 5.387 E), after two header lines.
awk '!/^#/ { n++; if ($3 < 52.15 || $3 > 52.16 || $4 < 5.38 || $4 > 5.39) bad++ }
     END { exit !(n == 28 && bad == 0) }' "$DIR/out/pieces_etrs89.txt" ||
    fail "ETRS89 listing"

# The shipped project is exactly what the tool makes: the sample data can always be remade.
"$VX" demo --make-project "$DIR/project.xml" && cmp -s "$DIR/project.xml" "$DATA/demo/project.xml" ||
    fail "data/demo/project.xml differs from what vx demo --make-project writes"

# A result that cannot be written: exit 1 and a message, never 0.
"$VX" demo /dev/full/out >/dev/null 2>"$DIR/err"
[ $? -eq 1 ] || fail "demo into /dev/full: wanted exit 1"
grep -q "demo:" "$DIR/err" || fail "no message for the failed write"

[ "$failures" -eq 0 ] && echo "vx demo: all checks passed"
exit $((failures > 0))
